"""The code bases that we are judged on: sources of Debian's packages, fetched and made ready for clang by one command.

They lie in the folder OSTRAKA_CORPORA, by itself the folder `corpora` beside the repository:

  src/             the source packages
  NAME/            the code base, which the tool is asked about; nothing is built in it
  .build/NAME/     what a build writes, with compile_commands.json
  .facts/NAME.db   what clang says, see compiler.py
  NAME.*.jsonl     what was drawn, see draw.py

`work` marks those that we look at every day. The others are only scored: whoever looks at their wrong answers one by one has
nothing left to judge by.
"""
import json
import os
import re
import subprocess
from dataclasses import dataclass, field

import compiler

HERE = os.path.dirname(os.path.abspath(__file__))


def folder():
    if 'OSTRAKA_CORPORA' in os.environ:
        return os.path.realpath(os.environ['OSTRAKA_CORPORA'])
    repository = subprocess.check_output(['git', 'rev-parse', '--path-format=absolute', '--git-common-dir'], cwd=HERE, text=True)
    return os.path.join(os.path.dirname(os.path.dirname(repository.strip())), 'corpora')


@dataclass
class CodeBase:
    name: str
    package: str
    style: str
    work: bool
    cmake: list = field(default_factory=list)  # options of its cmake, unless there are
    targets: list = field(default_factory=list)  # what its build must make before it can be parsed
    flags: str = ''                            # the same flags for every source, read by a shell that knows ROOT,
    sources: str = ''                          # whose paths match this expression
    before: str = ''                           # what the shell does before, in the folder of the build
    limit: int = 0                             # parse no more units than these, spread over all

    def path(self, *parts):
        return os.path.join(folder(), *parts)

    @property
    def root(self):
        return self.path(self.name)

    @property
    def build(self):
        return self.path('.build', self.name)

    @property
    def facts(self):
        return self.path('.facts', self.name + '.db')

    def drawn(self, what):
        return self.path(f'{self.name}.{what}.jsonl')


CODE_BASES = {base.name: base for base in [
    CodeBase('xerces-c', 'xerces-c=3.2.4+debian-1', 'a library of about 2000: export words, a namespace opened by a macro', True),
    CodeBase('openttd', 'openttd=13.0-2', 'a game: tables of macros, plain structs, templates for pools', True,
             targets=['table_strings', 'table_settings', 'script_window', 'script_ai_includes', 'script_game_includes']),
    CodeBase('libopenmpt', 'libopenmpt=0.6.9-1', 'sound: C++17, deep and inline namespaces, many templates', True,
             flags='-std=c++17 -DLIBOPENMPT_BUILD -DLIBOPENMPT_BUILD_TEST -I$ROOT/build/svn_version -I$ROOT -I$ROOT/src -I$ROOT/common '
                   '-DMPT_WITH_ZLIB -DMPT_WITH_MPG123 -DMPT_WITH_OGG -DMPT_WITH_VORBIS -DMPT_WITH_VORBISFILE',
             sources='(common|soundlib|sounddsp|libopenmpt|test|openmpt123|src/.*)/[^/]*[.]cpp|soundlib/plugins/.*[.]cpp'),
    CodeBase('librecad', 'librecad=2.2.0-1', 'a drawing program on a GUI toolkit: classes with a prefix, slots and signals', False,
             before='find $ROOT -name "*.ui" | while read -r file; do uic "$file" -o ui_$(basename "$file" .ui).h; done',
             flags='-std=c++17 -fPIC -DDWGSUPPORT -DQC_APPDIR=\'"librecad"\' -DLC_VERSION=\'"2.2.0"\' -I. -isystem /usr/include/muparser '
                   '$(pkg-config --cflags Qt5Widgets Qt5PrintSupport Qt5Svg) '
                   '$(find $ROOT/librecad/src $ROOT/libraries $ROOT/plugins -name "*.h" -printf "-I%h\\n" | sort -u)',
             sources='(librecad/src|plugins|libraries/libdxfrw/src)/(?!.*cadtoolbar).*[.]cpp'),
    CodeBase('bullet', 'bullet=3.24+dfsg-2', 'physics: classes with a prefix, attribute macros before names', False,
             flags='-std=c++17 -I$ROOT/src -I$ROOT/Extras/Serialize/BulletWorldImporter -I$ROOT/Extras/Serialize/BulletFileLoader '
                   '-I$ROOT/Extras/ConvexDecomposition -I$ROOT/Extras/HACD -I$ROOT/Extras/GIMPACTUtils',
             sources='(src|Extras)/(?!Bullet3OpenCL|obj2sdf|BulletRobotics|VHACD/test|Serialize/(Blend|Read|Head)).*/[^/]*[.]cpp'),
    CodeBase('ceres-solver', 'ceres-solver=2.1.0+really2.1.0+dfsg-1', 'numerics: templates, export words, tests in macros', False,
             limit=130),
]}


def as_root(*command):
    subprocess.run([*([] if os.geteuid() == 0 else ['sudo']), *command], check=True)


def fetch(base):
    """The source package in src/, by a list of sources of our own, so that the system's isn't touched."""
    sources, lists = base.path('src'), base.path('src', 'lists')
    os.makedirs(os.path.join(lists, 'partial'), exist_ok=True)
    with open(os.path.join(sources, 'sources.list'), 'w') as file:
        file.write('deb-src http://deb.debian.org/debian bookworm main\n')
    options = ['-q', '-o', f'Dir::Etc::SourceList={sources}/sources.list', '-o', 'Dir::Etc::SourceParts=-',
               '-o', f'Dir::State::Lists={lists}', '-o', 'APT::Sandbox::User=root', '-o', 'Acquire::Languages=none']
    if not [name for name in os.listdir(lists) if name.endswith(('Sources', 'Sources.gz', 'Sources.lz4'))]:
        subprocess.run(['apt-get', *options, 'update'], check=True)
    subprocess.run(['apt-get', *options, 'source', '--download-only', base.package], cwd=sources, check=True)


def description(base):
    package, version = base.package.split('=')
    return base.path('src', f'{package}_{version.split(":")[-1]}.dsc')


def commands_by_flags(base):
    """The compile commands of a code base whose sources all take the same flags."""
    flags = subprocess.check_output(['bash', '-e', '-c', f'printf "%s\\n" {base.flags}'], cwd=base.build, text=True,
                                    env={**os.environ, 'ROOT': base.root}).splitlines()
    sources = sorted(os.path.relpath(os.path.join(where, name), base.root) for where, _, names in os.walk(base.root) for name in names)
    return [{'directory': base.build, 'file': os.path.join(base.root, source), 'arguments': ['clang++-14', *flags]}
            for source in sources if re.fullmatch(base.sources, source)]


def configure(base):
    """Leaves compile_commands.json in the folder of the build."""
    os.makedirs(base.build, exist_ok=True)
    subprocess.run(['bash', '-e', '-c', base.before], cwd=base.build, check=True, env={**os.environ, 'ROOT': base.root})
    if base.flags:
        with open(os.path.join(base.build, 'compile_commands.json'), 'w') as file:
            json.dump(commands_by_flags(base), file, indent=1)
    else:
        subprocess.run(['cmake', '-S', base.root, '-B', base.build, '-DCMAKE_EXPORT_COMPILE_COMMANDS=ON', '-DCMAKE_BUILD_TYPE=Debug',
                        '-DCMAKE_CXX_COMPILER=clang++-14', '-DCMAKE_C_COMPILER=clang-14', *base.cmake], check=True)
        if base.targets:
            subprocess.run(['cmake', '--build', base.build, '-j2', '--target', *base.targets], check=True)


def prepare(base, again=False):
    """Everything up to what clang says. What is there already stays; `again` asks clang once more."""
    if not os.path.exists(description(base)):
        fetch(base)
    if not os.path.isdir(base.root):
        subprocess.run(['dpkg-source', '--no-check', '-x', description(base), base.root], check=True)
    if not os.path.exists(os.path.join(base.build, 'compile_commands.json')):
        as_root('env', 'DEBIAN_FRONTEND=noninteractive', 'apt-get', 'build-dep', '-qy', '--no-install-recommends', description(base))
        configure(base)
    if again or not os.path.exists(base.facts):
        os.makedirs(os.path.dirname(base.facts), exist_ok=True)
        compiler.ask(base.root, os.path.join(base.build, 'compile_commands.json'), base.facts, base.limit)
