"""Draws questions from what clang says about a code base, always the same ones for the same seed.

A line of NAME.at.jsonl is a place: `referenced` is the declaration that clang names there, `declared` that one and all its
other declarations (for the name in a call of a constructor, both those of the class and of the constructor). Of a name
that several programs of the code base define for themselves only those declarations count that the place's own unit reads.

A line of NAME.uses.jsonl is a declaration with all its `uses`; `spared` are places where an answer is neither right nor wrong.
A line of NAME.classes.jsonl is a class with its bases.
"""
import json
import random
import sqlite3

APART = ('macro', 'namespace')  # drawn as they come, and counted apart
ASKED = ('class', 'enum', 'method', 'field', 'variable', 'argument', 'function', 'enumerator', 'typedef', 'parameter')


class Facts:
    def __init__(self, path):
        self.database = sqlite3.connect(f'file:{path}?mode=ro', uri=True)
        self.read = {}

    def rows(self, query, *values):
        return self.database.execute(query, values).fetchall()

    def files_of(self, unit):
        if unit not in self.read:
            self.read[unit] = {file for file, in self.rows('select file from included where unit=?', unit)}
        return self.read[unit]

    def declarations(self, place, name, unit):
        """All places that declare what is declared at a place."""
        found = {place}
        for usr, in self.rows('select distinct usr from declaration where file=? and line=? and column=? and name=?', *place, name):
            rows = self.rows('select file, line, column, kind, definition from declaration where usr=?', usr)
            several = sum(definition for *_, kind, definition in rows if kind != 'namespace') > 1
            found.update(tuple(row[:3]) for row in rows if not several or row[0] in self.files_of(unit))
        return found


def as_place(place):
    return dict(zip(('file', 'line', 'column'), place))


def draw_at(facts, count, seed):
    """`count` places of the kinds asked for; the other kinds come along in their proportion."""
    places = facts.rows('''select file, line, column, name, kind, declaring, unit, toFile, toLine, toColumn, alsoFile, alsoLine, alsoColumn
        from place where toFile is not null and kind in (%s) order by file, line, column''' % ','.join(map(repr, ASKED + APART)))
    random.Random(seed).shuffle(places)
    drawn, asked = [], 0
    for file, line, column, name, kind, declaring, unit, *to in places:
        if asked == count:
            break
        asked += kind not in APART
        referenced, also = tuple(to[:3]), tuple(to[3:])
        declared = facts.declarations(referenced, name, unit)
        if also[0]:
            declared |= facts.declarations(also, name, unit)
        drawn.append({'file': file, 'line': line, 'column': column, 'name': name, 'kind': kind, 'declaring': bool(declaring),
                      'referenced': as_place(referenced), 'declared': [as_place(place) for place in sorted(declared)]})
    return drawn


def draw_uses(facts, count, seed):
    """`count` declarations that are used somewhere, each with the places that clang gives for it."""
    declared = facts.rows('''select distinct p.file, p.line, p.column, p.name, p.kind, p.unit from place p
        where p.declaring and p.kind in (%s) and exists (select 1 from place u where not u.declaring
        and u.toFile=p.file and u.toLine=p.line and u.toColumn=p.column) order by 1, 2, 3''' % ','.join(map(repr, ASKED)))
    random.Random(seed).shuffle(declared)
    drawn = []
    for file, line, column, name, kind, unit in declared[:count]:
        declarations = facts.declarations((file, line, column), name, unit)
        uses, spared = set(), set()
        for to in declarations:
            uses.update(facts.rows('select file, line, column from place where toFile=? and toLine=? and toColumn=?', *to))
            # A constructor's name is the class's too.
            spared.update(facts.rows('select file, line, column from place where alsoFile=? and alsoLine=? and alsoColumn=?', *to))
        if kind == 'class':
            spared.update(facts.rows("select file, line, column from place where name=? and kind='method'", name))
        drawn.append({'file': file, 'line': line, 'column': column, 'name': name, 'kind': kind,
                      'uses': [as_place(place) for place in sorted(uses)],
                      'spared': [as_place(place) for place in sorted(spared - uses)]})
    return drawn


def draw_classes(facts):
    rows = facts.rows('select file, line, column, head, name, kind, bases from class where not macro order by file, line, column')
    return [{'file': file, 'line': line, 'column': column, 'head': head, 'name': name, 'kind': kind, 'bases': json.loads(bases)}
            for file, line, column, head, name, kind, bases in rows]


def write(path, rows):
    with open(path, 'w') as file:
        file.writelines(json.dumps(row) + '\n' for row in rows)
    print(f'{path}: {len(rows)} drawn')


def draw(base, count=2000, seed=20, declarations=250):
    facts = Facts(base.facts)
    write(base.drawn('at'), draw_at(facts, count, seed))
    write(base.drawn('uses'), draw_uses(facts, declarations, seed))
    write(base.drawn('classes'), draw_classes(facts))
