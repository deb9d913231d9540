"""What clang says about a code base, kept in a database.

Every translation unit is parsed with the flags of its build and its tree is walked once. The database then holds, of all
files of the code base that clang has read:

  unit         the translation units, with their errors
  included     the files of the code base that a unit reads
  place        each identifier that stands for a declaration: where it is, what it is called, and which place declares it.
               kind 'open' is a name that clang leaves open, as in a template; no `to` is a declaration outside the folder.
               Inactive branches, the texts of macros and a few names in templates have no place
  declaration  each declaration with the name that is common to all its redeclarations (clang's USR)
  class        each class that is defined, with its direct bases; `macro` where a macro gives it its name

File names are relative to the folder of the code base; lines and columns count from 1, columns in bytes. A header is walked
in the first unit that reads it, which also decides on its branches.
"""
import ctypes
import json
import multiprocessing
import os
import re
import shlex
import sqlite3
import subprocess

from clang import cindex
from clang.cindex import CursorKind as Kind

SCHEMA = '''
create table unit(id integer primary key, file text, errors integer, missing integer);
create table included(unit integer, file text);
create table place(file text, line integer, column integer, name text, kind text, declaring integer, unit integer,
    toFile text, toLine integer, toColumn integer, alsoFile text, alsoLine integer, alsoColumn integer,
    primary key(file, line, column)) without rowid;
create table declaration(usr text, file text, line integer, column integer, name text, kind text, definition integer,
    unit integer, primary key(usr, file, line, column)) without rowid;
create table class(file text, line integer, column integer, head integer, name text, kind text, bases text,
    macro integer, primary key(file, line, column)) without rowid;
'''

INDEXES = '''
create index place_to on place(toFile, toLine, toColumn);
create index declaration_at on declaration(file, line, column);
create index included_at on included(unit);
'''

CLASSES = {Kind.CLASS_DECL: 'class', Kind.STRUCT_DECL: 'struct', Kind.UNION_DECL: 'union', Kind.CLASS_TEMPLATE: 'class',
           Kind.CLASS_TEMPLATE_PARTIAL_SPECIALIZATION: 'class'}
KINDS = {
    **{kind: 'class' for kind in CLASSES},
    Kind.ENUM_DECL: 'enum', Kind.ENUM_CONSTANT_DECL: 'enumerator',
    Kind.CXX_METHOD: 'method', Kind.CONSTRUCTOR: 'method', Kind.DESTRUCTOR: 'method', Kind.CONVERSION_FUNCTION: 'method',
    Kind.FUNCTION_DECL: 'function', Kind.FUNCTION_TEMPLATE: 'function',
    Kind.FIELD_DECL: 'field', Kind.VAR_DECL: 'variable', Kind.PARM_DECL: 'argument',
    Kind.TYPEDEF_DECL: 'typedef', Kind.TYPE_ALIAS_DECL: 'typedef', Kind.TYPE_ALIAS_TEMPLATE_DECL: 'typedef',
    Kind.TEMPLATE_TYPE_PARAMETER: 'parameter', Kind.TEMPLATE_NON_TYPE_PARAMETER: 'parameter',
    Kind.TEMPLATE_TEMPLATE_PARAMETER: 'parameter',
    Kind.NAMESPACE: 'namespace', Kind.NAMESPACE_ALIAS: 'namespace', Kind.MACRO_DEFINITION: 'macro',
}
KIND_OF = {kind.value: name for kind, name in KINDS.items()}
CLASS_OF = {kind.value: name for kind, name in CLASSES.items()}
REFERENCES = {kind.value for kind in (
    Kind.TYPE_REF, Kind.TEMPLATE_REF, Kind.NAMESPACE_REF, Kind.MEMBER_REF, Kind.VARIABLE_REF, Kind.DECL_REF_EXPR,
    Kind.MEMBER_REF_EXPR, Kind.CALL_EXPR, Kind.OVERLOADED_DECL_REF, Kind.MACRO_INSTANTIATION)}
OPEN = {kind.value for kind in (Kind.DECL_REF_EXPR, Kind.MEMBER_REF_EXPR, Kind.OVERLOADED_DECL_REF)}
CALL, BASE = Kind.CALL_EXPR.value, Kind.CXX_BASE_SPECIFIER.value
ALIAS, ALIAS_TEMPLATE = Kind.TYPE_ALIAS_DECL.value, Kind.TYPE_ALIAS_TEMPLATE_DECL.value
MEMBERS = {Kind.FUNCTION_TEMPLATE.value: 'method', Kind.VAR_DECL.value: 'field'}
BREAK, CONTINUE, RECURSE = 0, 1, 2

WORD = re.compile(rb'[A-Za-z_]\w*')
lib = cindex.conf.lib

# Not among the functions that the bindings know.
lib.clang_getFileLocation.argtypes = [cindex.SourceLocation] + [ctypes.c_void_p] * 4


def last_name(text):
    """The last name of a type as written: `B` of `const ns::A<int>::B<x::y>`."""
    while '<' in text:
        shorter = re.sub(r'<[^<>]*>', '', text)
        if shorter == text:
            break
        text = shorter
    return text.split('::')[-1].split(' ')[-1].strip()


class Walk:
    """The walk over one unit. `done` are the files that earlier units have shown; they are passed over."""

    def __init__(self, root, done):
        self.root, self.done = root, done
        self.texts = {}

    def unit(self, tu, number):
        self.tu, self.number = tu, number
        self.names = {}       # by the address of clang's file, which is another one in each unit
        self.targets = {}     # by the address of clang's declaration
        self.places, self.declarations, self.classes = {}, {}, {}
        self.failure = None
        lib.clang_visitChildren(tu.cursor, cindex.callbacks['cursor_visit'](self.visit), None)
        if self.failure:
            raise self.failure

    def text(self, name):
        if name not in self.texts:
            with open(os.path.join(self.root, name), 'rb') as file:
                self.texts[name] = file.read()
        return self.texts[name]

    def name(self, file):
        """The file below the root, or None for one that lies outside."""
        address = ctypes.cast(file, ctypes.c_void_p).value
        if address not in self.names:
            path = os.path.realpath(cindex.File(file).name) if address else ''
            inside = path.startswith(self.root + '/')
            self.names[address] = path[len(self.root) + 1:] if inside else None
        return self.names[address]

    def where(self, location):
        """File, line, column and offset, for an argument of a macro where it is written."""
        file, line, column, offset = cindex.c_object_p(), ctypes.c_uint(), ctypes.c_uint(), ctypes.c_uint()
        lib.clang_getFileLocation(location, ctypes.byref(file), ctypes.byref(line), ctypes.byref(column), ctypes.byref(offset))
        return self.name(file), line.value, column.value, offset.value

    def visit(self, cursor, parent, _):
        try:
            return self.look(cursor, parent)
        except Exception as failure:  # nothing may be thrown through clang
            self.failure = failure
            return BREAK

    def look(self, cursor, parent):
        cursor._tu = self.tu
        file, line, column, offset = self.where(lib.clang_getCursorLocation(cursor))
        if file is None or file in self.done:
            # What an expression implies has no place, and yet children that have.
            return CONTINUE if parent._kind_id == Kind.TRANSLATION_UNIT.value else RECURSE
        kind, place = cursor._kind_id, (file, line, column)
        if kind in KIND_OF:
            self.declare(cursor, place, offset)
        elif kind in REFERENCES:
            self.refer(cursor, place, offset)
        return RECURSE

    def word(self, file, offset):
        match = WORD.match(self.text(file), offset)
        return match.group().decode() if match else ''

    def kind(self, cursor):
        if cursor._kind_id in MEMBERS:
            parent = cursor.semantic_parent
            if parent is not None and parent._kind_id in CLASS_OF:
                return MEMBERS[cursor._kind_id]
        # What has no kind of its own and is yet referred to is a name of a structured binding.
        return KIND_OF.get(cursor._kind_id, 'variable' if cursor._kind_id == Kind.UNEXPOSED_DECL.value else 'other')

    def alias(self, cursor):
        """The alias in a template of an alias, which stands at its name, where the template stands at `using`."""
        return next((child for child in cursor.get_children() if child._kind_id == ALIAS), cursor)

    def declare(self, cursor, place, offset):
        name, kind = cursor.spelling.split('<')[0], self.kind(cursor)
        if not name or cursor._kind_id == ALIAS_TEMPLATE:  # whose alias follows
            return
        usr = cursor.get_usr() if kind != 'macro' else ''
        usr = usr or ':'.join(map(str, place))
        self.declarations[(usr, *place)] = (name, kind, int(cursor.is_definition()))
        written = self.word(place[0], offset) == name
        if written and self.instantiates(cursor):
            _, _, to = self.target(lib.clang_getSpecializedCursorTemplate(cursor))
            self.places[place] = (1, name, kind, 0, to, None)
            return
        if written:
            self.places[place] = (0, name, kind, 1, place, None)
        if CLASS_OF.get(cursor._kind_id, 'union') != 'union' and cursor.is_definition():
            self.classes[place] = (cursor.extent.start.line, name, CLASS_OF[cursor._kind_id],
                                   json.dumps(self.bases(cursor)), int(not written))

    def instantiates(self, cursor):
        """True for `template class A<int>;`, which clang takes for a definition, and which only refers to A."""
        if cursor._kind_id not in CLASS_OF or not cursor.is_definition():
            return False
        file, _, _, offset = self.where(lib.clang_getRangeEnd(cursor.extent))
        return file is not None and self.text(file)[offset - 1:offset] == b'>' and bool(lib.clang_getSpecializedCursorTemplate(cursor))

    def bases(self, cursor):
        return [{'name': last_name(base.type.spelling), 'access': base.access_specifier.name.lower(),
                 'virtual': bool(lib.clang_isVirtualBase(base))}
                for base in cursor.get_children() if base._kind_id == BASE]

    def target(self, cursor):
        """Name, kind and place of a declaration that is referred to."""
        address = cursor.data[0]
        if address not in self.targets:
            cursor = self.alias(cursor) if cursor._kind_id == ALIAS_TEMPLATE else cursor
            file, line, column, _ = self.where(lib.clang_getCursorLocation(cursor))
            self.targets[address] = (cursor.spelling.split('<')[0], self.kind(cursor), (file, line, column))
        return self.targets[address]

    def refer(self, cursor, place, offset):
        word = self.word(place[0], offset)
        if not word:
            return
        referenced = cursor.referenced
        if referenced is None or referenced._kind_id == Kind.OVERLOADED_DECL_REF.value:
            if cursor._kind_id in OPEN:
                self.places.setdefault(place, (3, word, 'open', 0, None, None))
            return
        name, kind, to = self.target(referenced)
        if name != word:
            return
        if to == place:  # `friend class A;` or `struct A *` may be what declares A, and is no declaration in clang's tree
            self.declarations.setdefault((referenced.get_usr(), *place), (name, kind, 0))
        # A call of a constructor stands where its class is named: the name is the class's, the constructor right as well.
        rank = 2 if cursor._kind_id == CALL else 1
        former = self.places.get(place)
        if former is None or rank < former[0]:
            also = former[4] if former and former[0] == 2 and former[4] != to else None
            self.places[place] = (rank, name, kind, 0, to, also)
        elif rank == 2 and former[0] == 1 and former[4] != to:
            self.places[place] = (*former[:5], to)


def arguments(command):
    """The flags of a build's command, without the compiler, the source and what is written."""
    words = iter(command.get('arguments') or shlex.split(command['command']))
    next(words)
    kept = []
    for word in words:
        if word in ('-o', '-MF', '-MT', '-MQ'):
            next(words)
        elif word not in ('-c', '-MD', '-MMD', '-MP', '--') and not word.startswith('-W') and \
                os.path.join(command['directory'], word) != command['file']:
            kept.append(word)
    return kept


def parse_share(work):
    """One share of the units; every share keeps its own list of the files that it has walked."""
    root, commands, share, shares = work
    resources = subprocess.check_output(['clang-14', '-print-resource-dir'], text=True).strip()
    index, done, found = cindex.Index.create(), set(), []
    walk = Walk(root, done)
    for number in range(share, len(commands), shares):
        command = commands[number]
        flags = arguments(command) + ['-w', '-ferror-limit=0', '-resource-dir', resources]
        os.chdir(command['directory'])
        source = os.path.realpath(command['file'])
        try:
            tu = index.parse(source, flags, options=cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
        except cindex.TranslationUnitLoadError:
            found.append(((number, source, -1, -1), [], {}, {}, {}))
            continue
        errors = [message for message in tu.diagnostics if message.severity >= cindex.Diagnostic.Error]
        missing = sum('file not found' in message.spelling for message in errors)
        walk.unit(tu, number)
        inside = {os.path.realpath(include.include.name) for include in tu.get_includes()} | {source}
        inside = sorted(path[len(root) + 1:] for path in inside if path.startswith(root + '/'))
        done.update(inside)
        name = os.path.relpath(source, root)
        found.append(((number, name, len(errors), missing), inside, walk.places, walk.declarations, walk.classes))
        if len(found) % 50 == 0:
            print(f'  share {share}: {len(found)} units', flush=True)
    return found


def keep(database, rows):
    unit, inside, places, declarations, classes = rows
    number = unit[0]
    database.execute('insert into unit values(?,?,?,?)', unit)
    database.executemany('insert into included values(?,?)', [(number, file) for file in inside])
    database.executemany('insert or ignore into place values(?,?,?,?,?,?,?,?,?,?,?,?,?)', [
        (*place, name, kind, declaring, number, *(to or (None,) * 3), *(also or (None,) * 3))
        for place, (_, name, kind, declaring, to, also) in places.items()])
    database.executemany('insert or ignore into declaration values(?,?,?,?,?,?,?,?)', [
        (*key, *value, number) for key, value in declarations.items()])
    database.executemany('insert or ignore into class values(?,?,?,?,?,?,?,?)', [(*key, *value) for key, value in classes.items()])


def chosen(commands, root, limit):
    """The commands of sources in the folder, each source once, at most `limit` of them spread over the list."""
    once = {}
    for command in commands:
        command['file'] = os.path.join(command['directory'], command['file'])
        source = os.path.realpath(command['file'])
        if source.startswith(root + '/') and os.path.exists(source):
            once.setdefault(source, command)
    inside = [once[source] for source in sorted(once)]
    step = max(1, -(-len(inside) // limit)) if limit else 1
    return inside[::step]


def ask(root, commands, path, limit=0, shares=2):
    """Parses the units of a code base and writes the database. The number of shares is part of the result."""
    root = os.path.realpath(root)
    with open(commands) as file:
        commands = chosen(json.load(file), root, limit)
    print(f'{root}: {len(commands)} units', flush=True)
    with multiprocessing.Pool(shares) as pool:
        found = [rows for share in pool.map(parse_share, [(root, commands, i, shares) for i in range(shares)]) for rows in share]
    # Beside the former one until it is whole, for others ask that.
    if os.path.exists(path + '.new'):
        os.remove(path + '.new')
    database = sqlite3.connect(path + '.new')
    database.executescript(SCHEMA)
    for rows in sorted(found, key=lambda rows: rows[0][0]):
        keep(database, rows)
    database.executescript(INDEXES)
    database.commit()
    database.close()
    os.replace(path + '.new', path)
