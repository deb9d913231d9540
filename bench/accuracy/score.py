"""Asks the tool what was drawn and counts.

An answer is right where one of the declarations that it names is the compiler's: `strict` asks for the line of the very
declaration that clang refers to, `any` takes every other declaration of the same thing as well, which is what counts. It is
wrong where it names only others, and silent where it names none. An answerer takes places and gives for each the list of
the places that it names, so that the tool, a tags file and a language server are counted by the same lines.
"""
import json
import os
import random
import subprocess
import time

from compiler import last_name
from draw import APART, ASKED, Facts, as_place


def read(path):
    with open(path) as file:
        return [json.loads(line) for line in file]


def below(root, name, start):
    """A file as the tool names it, relative to the root of the code base."""
    return os.path.relpath(os.path.realpath(os.path.join(start, name)), root)


def named(root, declared):
    return [(below(root, place['file'], root), place['line']) for place in declared if place.get('file') and place.get('line')]


class Tool:
    """The tool, started in the folder of the code base, so that names are short on both sides."""

    def __init__(self, program, options=()):
        self.program, self.options = os.path.realpath(program), list(options)

    def run(self, root, *arguments, text=None):
        return subprocess.run([self.program, *arguments, '-w', '.', *self.options], cwd=root, input=text, text=True, errors='replace',
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def answer(self, base, drawn):
        """All places by one call."""
        text = ''.join(f"{place['file']}:{place['line']}:{place['column']}\n" for place in drawn)
        answered = self.run(base.root, 'at', '--places', '-', text=text)
        lines = answered.stdout.splitlines()
        if len(lines) != len(drawn):
            raise SystemExit(f'{self.program} at --places: {len(lines)} answers for {len(drawn)} places, exit code {answered.returncode}')
        return [named(base.root, json.loads(line).get('declared') or []) for line in lines]

    def answer_singly(self, base, drawn):
        """A call a place, for a tool that doesn't take many."""
        answers = []
        for place in drawn:
            answered = self.run(base.root, 'at', f"{place['file']}:{place['line']}:{place['column']}", '--format', 'json')
            answers.append(named(base.root, json.loads(answered.stdout).get('declared') or []) if answered.stdout else [])
        return answers

    def json(self, base, *arguments):
        answered = self.run(base.root, *arguments, '--format', 'json')
        return json.loads(answered.stdout) if answered.stdout else {}


class Tags:
    """What a tags file of the code base has under that name: its first entry, or every one."""

    def __init__(self, every=False):
        self.every = every

    def entries(self, base):
        path = base.path('.cache', base.name, 'tags')
        if not os.path.exists(path):
            os.makedirs(os.path.dirname(path), exist_ok=True)
            subprocess.run(['ctags', '-R', '--languages=C,C++', '--kinds-C++=+p', '--fields=+n', '--sort=yes', '-f', path, '.'],
                           cwd=base.root, check=True, stderr=subprocess.DEVNULL)
        entries = {}
        with open(path, errors='replace') as file:
            for line in file:
                name, source, *rest = line.rstrip('\n').split('\t')
                number = next((int(part[5:]) for part in rest if part.startswith('line:')), 0)
                if not line.startswith('!'):
                    entries.setdefault(name, []).append((os.path.normpath(source), number))
        return entries

    def answer(self, base, drawn):
        entries = self.entries(base)
        return [entries.get(place['name'], [])[:None if self.every else 1] for place in drawn]


def judge(place, answer):
    """'strict', 'any', 'wrong' or 'silent'."""
    if not answer:
        return 'silent'
    if (place['referenced']['file'], place['referenced']['line']) in answer:
        return 'strict'
    return 'any' if {(other['file'], other['line']) for other in place['declared']}.intersection(answer) else 'wrong'


class Count:
    def __init__(self):
        self.places = self.answered = self.named = 0
        self.verdicts = dict.fromkeys(('strict', 'any', 'wrong', 'silent'), 0)

    def add(self, verdict, answer):
        self.places += 1
        self.verdicts[verdict] += 1
        self.answered += bool(answer)
        self.named += len(set(answer))

    def row(self, title):
        verdicts, share = self.verdicts, lambda count: 100 * count / self.places
        mean = self.named / self.answered if self.answered else 0
        return (f"{title:14}{self.places:7}{share(verdicts['strict'] + verdicts['any']):9.1f}{share(verdicts['strict']):9.1f}"
                f"{share(verdicts['wrong']):8.1f}{share(verdicts['silent']):8.1f}{mean:11.2f}")


HEAD = f"{'':14}{'places':>7}{'right %':>9}{'strict %':>9}{'wrong %':>8}{'silent':>8}{'a place':>11}"


def table(title, drawn, answers):
    """A line for each kind, and for the totals those that don't stand apart."""
    counts = {}
    for place, answer in zip(drawn, answers):
        rows = [place['kind']]
        if place['kind'] not in APART:
            rows += ['declaring' if place['declaring'] else 'using', 'all']
        for row in rows:
            counts.setdefault(row, Count()).add(judge(place, answer), answer)
    lines = [title, HEAD]
    for row in (*ASKED, 'declaring', 'using', 'all', *APART):
        if row in counts:
            lines.append(counts[row].row(row))
    return '\n'.join(lines)


def source_line(base, place):
    with open(os.path.join(base.root, place['file']), errors='replace') as file:
        return file.read().split('\n')[place['line'] - 1]


def spell(place):
    return f"{place['file']}:{place['line']}:{place['column']}"


def list_wrong(base, drawn, answers, count, kinds, verdicts, seed):
    """Some of the answers that aren't right, each with its line, the compiler's place and the tool's."""
    missed = [(place, answer) for place, answer in zip(drawn, answers)
              if judge(place, answer) in verdicts and (place['kind'] in kinds if kinds else place['kind'] not in APART)]
    for place, answer in random.Random(seed).sample(missed, min(count, len(missed))):
        print(f"\n{spell(place)}: {judge(place, answer)}, {place['kind']} {place['name']}")
        line = source_line(base, place)
        print(f"    {line.strip()}")
        indent = place['column'] - 1 - (len(line) - len(line.lstrip()))
        print(f"    {' ' * indent}^")
        print(f"  clang  {spell(place['referenced'])}: {source_line(base, place['referenced']).strip()}")
        for file, number in answer[:5]:
            print(f"  tool   {file}:{number}: {source_line(base, {'file': file, 'line': number}).strip()}")


def score_at(base, who, answerer, options):
    drawn = read(base.drawn('at'))
    if options.kind:
        drawn = [place for place in drawn if place['kind'] in options.kind]
    if options.only:
        drawn = [place for place in drawn if place['declaring'] == (options.only == 'declaring')]
    drawn = drawn[:options.first or None]
    began = time.time()
    answers = answerer(base, drawn)
    print(table(f'{base.name}: {who}, {time.time() - began:.1f} s', drawn, answers))
    if options.wrong:
        verdicts = (options.verdict,) if options.verdict else ('wrong', 'silent')
        list_wrong(base, drawn, answers, options.wrong, options.kind, verdicts, options.seed)
    print()


class Seen:
    """Which places the compiler can judge: not those in inactive branches, in texts of macros, in comments."""

    def __init__(self, base):
        self.facts = Facts(base.facts)

    def judges(self, file, line, column):
        return bool(self.facts.rows("select 1 from place where file=? and line=? and column=? and kind<>'open'", file, line, column))


def places_of(uses):
    return {(use['file'], use['line'], use['column']) for use in uses}


class UsesCount:
    """The compiler's places among the tool's (`wanted`, `found`), and the tool's certain ones among the compiler's."""

    def __init__(self, seen):
        self.seen = seen
        self.asked = self.failed = self.wanted = self.found = self.certain = self.judged = self.right = self.possible = 0
        self.missed, self.false = [], []

    def add(self, declaration, told):
        """`told` maps places to their certainty; None where the tool gave no answer."""
        self.asked, self.failed = self.asked + 1, self.failed + (told is None)
        told, compiler, spared = told or {}, places_of(declaration['uses']), places_of(declaration['spared'])
        sure = {place for place, certainty in told.items() if certainty == 'certain'}
        judged = {place for place in sure - spared if place in compiler or self.seen.judges(*place)}
        self.wanted, self.found = self.wanted + len(compiler), self.found + len(compiler & told.keys())
        self.certain, self.possible = self.certain + len(sure), self.possible + len(told) - len(sure)
        self.judged, self.right = self.judged + len(judged), self.right + len(judged & compiler)
        self.missed += [(declaration, place) for place in sorted(compiler - told.keys())]
        self.false += [(declaration, place) for place in sorted(judged - compiler)]

    def show(self, title):
        print(f'{title}: uses of {self.asked} declarations' + (f', no answer for {self.failed}' if self.failed else ''))
        print(f'  of the {self.wanted} places of the compiler {self.found} are named, {100 * self.found / max(1, self.wanted):.1f} %')
        print(f'  of {self.certain} certain places the compiler can judge {self.judged}, and {self.right} are its own, '
              f'{100 * self.right / max(1, self.judged):.1f} %')
        print(f'  {self.possible} places are told as possible')


def uses_told(base, tool, declaration):
    """The places that the tool gives with their certainty; None where it gives no answer."""
    uses = tool.json(base, 'uses', spell(declaration)).get('uses')
    if uses is None:
        return None
    return {(below(base.root, use['file'], base.root), use['line'], use['column']): use['certainty'] for use in uses}


def score_uses(base, tool, options):
    count = UsesCount(Seen(base))
    for declaration in read(base.drawn('uses'))[:options.first or None]:
        if not options.kind or declaration['kind'] in options.kind:
            count.add(declaration, uses_told(base, tool, declaration))
    count.show(base.name)
    for title, places in (('missed', count.missed), ("certain and not the compiler's", count.false)):
        for declaration, place in random.Random(options.seed).sample(places, min(options.wrong, len(places))):
            place = as_place(place)
            print(f"\n{spell(place)}: {title}: {declaration['kind']} {declaration['name']} of {spell(declaration)}")
            print(f'    {source_line(base, place).strip()}')
    print()


def bases_told(row):
    """The direct bases; without `bases` the only one that `base` names."""
    if 'bases' in row:
        return [(last_name(base['name']), base.get('access'), base.get('virtual')) for base in row['bases']]
    return [(last_name(row['base']), None, None)] if row.get('base') else []


class ClassesCount:
    """Classes by file and name; where a head takes several lines, any of them up to the name is its place."""

    def __init__(self, told):
        self.told, self.all, self.found, self.names, self.whole, self.missed = told, 0, 0, 0, 0, []

    def add(self, wanted):
        self.all += 1
        rows = [row for row in self.told.get((wanted['file'], wanted['name']), []) if wanted['head'] <= row['line'] <= wanted['line']]
        if not rows:
            self.missed.append((wanted, 'not found'))
            return
        compiler, tool = [(base['name'], base['access'], base['virtual']) for base in wanted['bases']], bases_told(rows[0])
        by_name = [[name for name, *_ in bases] for bases in (tool, compiler)]
        self.found += 1
        self.names += by_name[0] == by_name[1]
        self.whole += tool == compiler
        if tool != compiler:
            self.missed.append((wanted, f'bases {tool}, by clang {compiler}'))

    def show(self, title):
        share = lambda count: f'{count} ({100 * count / max(1, self.all):.1f} %)'
        print(f'{title}: {self.all} classes, found {share(self.found)}, bases right by name {share(self.names)}, '
              f'by access and virtual too {share(self.whole)}')


def score_classes(base, tool, options):
    told = {}
    for row in tool.json(base, 'classes', '.').get('classes', []):
        told.setdefault((below(base.root, row['file'], base.root), last_name(row['name'])), []).append(row)
    count = ClassesCount(told)
    for wanted in read(base.drawn('classes')):
        count.add(wanted)
    count.show(base.name)
    for wanted, why in random.Random(options.seed).sample(count.missed, min(options.wrong, len(count.missed))):
        print(f"\n{spell(wanted)}: {wanted['name']}: {why}\n    {source_line(base, wanted).strip()}")
    print()
