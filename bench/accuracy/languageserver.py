"""A language server as an answerer: definitions by the protocol on its standard input and output, without flags of a build."""
import json
import os
import subprocess
import tempfile
from urllib.parse import quote, unquote, urlparse


class Clangd:
    """Starts clangd in a folder that holds no compile commands, asks and closes file by file."""

    def answer(self, base, drawn):
        self.number = 0
        with tempfile.TemporaryDirectory() as empty:
            self.server = subprocess.Popen(['clangd', f'--compile-commands-dir={empty}', '--background-index=false', '-j=1', '--log=error'],
                                           stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
            self.ask('initialize', {'processId': os.getpid(), 'rootUri': None, 'capabilities': {}})
            self.tell('initialized', {})
            by_file = {}
            for position, place in enumerate(drawn):
                by_file.setdefault(place['file'], []).append((position, place))
            answers = [[]] * len(drawn)
            for file in sorted(by_file):
                for position, answer in self.answer_file(base, file, by_file[file]):
                    answers[position] = answer
            self.ask('shutdown', None)
            self.tell('exit', None)
            self.server.wait()
        return answers

    def answer_file(self, base, file, places):
        path = os.path.join(base.root, file)
        document = {'uri': 'file://' + quote(path)}
        with open(path, 'rb') as source:
            text = source.read()
        lines = text.split(b'\n')
        self.tell('textDocument/didOpen', {'textDocument': {
            **document, 'languageId': 'cpp', 'version': 1, 'text': text.decode(errors='replace')}})
        for position, place in places:
            before = lines[place['line'] - 1][:place['column'] - 1].decode(errors='replace')
            found = self.ask('textDocument/definition', {'textDocument': document, 'position': {
                'line': place['line'] - 1, 'character': len(before.encode('utf-16-le')) // 2}})
            yield position, [(os.path.relpath(unquote(urlparse(place['uri']).path), base.root), place['range']['start']['line'] + 1)
                             for place in found or []]
        self.tell('textDocument/didClose', {'textDocument': document})

    def send(self, message):
        body = json.dumps({'jsonrpc': '2.0', **message}).encode()
        self.server.stdin.write(b'Content-Length: %d\r\n\r\n' % len(body) + body)
        self.server.stdin.flush()

    def tell(self, method, parameters):
        self.send({'method': method, 'params': parameters})

    def ask(self, method, parameters):
        """The result; what the server says meanwhile is passed over."""
        self.number += 1
        self.send({'id': self.number, 'method': method, 'params': parameters})
        while True:
            length = 0
            while (line := self.server.stdout.readline().strip()):
                if line.lower().startswith(b'content-length:'):
                    length = int(line.split(b':')[1])
            if not length:
                raise SystemExit(f'clangd ended at {method}')
            message = json.loads(self.server.stdout.read(length))
            if message.get('id') == self.number and 'method' not in message:
                return message.get('result')
