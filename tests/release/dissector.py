#!/usr/bin/env python3
"""dissector.py BIN: captures sessions of the programs in the folder BIN and compares what the
dissector of examples/wireshark shows with what was sent. It needs tshark; who is not root captures
in a network of his own, which takes unshare and ip."""

import os
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import time
import zlib

SOURCE = pathlib.Path(__file__).resolve().parents[2]
DISSECTOR = SOURCE / 'examples/wireshark/ravelink.lua'
SCENARIOS = SOURCE / 'examples/scenarios'
PATIENCE = 60  # seconds for what takes some at most

CONTENT = bytes(i * i // 251 % 256 for i in range(300_001))
COMPLETE = ['0x00000001', '0x00000002', '0x00000003', '0x00000004', '0x00000005']
EXPERTS = ['wrong_magic', 'wrong_crc', 'mismatch', 'error', 'unknown_code', 'incomplete',
           'behind_trailer', 'no_beginning']
COLUMNS = ['request.file_size', 'request.file_crc', 'header.accept_token', 'header.file_size',
           'data', 'data.offset', 'data.length', 'data.progress', 'trailer.file_size',
           'trailer.file_crc', 'trailer.accept_token', 'notification.code',
           'notification.accept_token', 'notification.restart', 'notification.status'] + EXPERTS


def send_byte_by_byte(path, address):
    """An updater whose segments hold a byte each, which the real one cannot be made to do."""
    content = path.read_bytes()
    size, crc = len(content).to_bytes(4, 'big'), zlib.crc32(content).to_bytes(4, 'big')
    magic, complement = bytes.fromhex('E8B47CC3'), bytes.fromhex('174B833C')
    with socket.create_connection(address) as connection:
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)

        def send(data):
            for i in range(len(data)):
                connection.send(data[i:i + 1])
        send(magic + size + crc + complement)
        token = connection.recv(16, socket.MSG_WAITALL)[8:12]
        send(magic + token + bytes.fromhex('00010000') + size)
        send(content + size + crc + token + magic)
        for _ in range(4):
            connection.recv(16, socket.MSG_WAITALL)


# Of each session: the scenario, the file, the codes of the notifications and what else is seen.
# Behind a record that the updater does not like, the device may or may not get a word in.
SESSIONS = [
    (None, CONTENT, COMPLETE, {'notification.restart': ['1']}),
    (None, b'', COMPLETE, {'notification.restart': ['1']}),
    (send_byte_by_byte, CONTENT[:500], COMPLETE, {'notification.restart': ['1']}),
    ('drip', CONTENT[:5], COMPLETE, {'notification.restart': ['1']}),
    ('together', CONTENT, COMPLETE, {'notification.restart': ['1']}),
    ('restart-power-cycle', CONTENT[:1], COMPLETE, {'notification.restart': ['3']}),
    ('status-06-system-busy', b'x', ['0x80000001'], {'notification.status': ['6'], 'error': ['1']}),
    ('error-alt', b'x', ['0x80000002'], {'notification.status': ['6'], 'error': ['1']}),
    ('wrong-magic', b'x', COMPLETE[:1], {'wrong_magic': ['1']}),
    ('wrong-crc', CONTENT, COMPLETE[:2], {'wrong_crc': ['1']}),
]


def fail(text):
    sys.exit(f'*** {text}')


def wait_for(condition, what):
    end = time.monotonic() + PATIENCE
    while not (result := condition()):
        if time.monotonic() > end:
            fail(f'This took too long: {what}')
        time.sleep(0.2)
    return result


class Session:
    def __init__(self, number, folder, programs, row):
        self.kind, self.content, self.codes, self.more = row
        self.name = f'session {number} ({getattr(self.kind, "__name__", self.kind or "honest")})'
        self.folder, self.programs = folder, programs
        self.path = folder / f'{number}.rvl'
        self.path.write_bytes(self.content)
        self.updater = None
        log = folder / f'{number}.log'
        scenario = ['-s', SCENARIOS / f'{self.kind}.conf'] if isinstance(self.kind, str) else []
        self.device = subprocess.Popen(
            [programs / 'ravelink-device', '--once', '-b', '127.0.0.1:0', *scenario],
            stdout=log.open('wb'))
        mark = '- Listening on: 127.0.0.1:'
        listening = wait_for(lambda: [line for line in log.read_text().splitlines(True)
                                      if line.startswith(mark) and line.endswith('\n')],
                             f'the device of {self.name}')
        self.port = listening[0][len(mark):].strip()

    def start(self):
        if callable(self.kind):
            self.kind(self.path, ('127.0.0.1', int(self.port)))
        else:
            self.updater = subprocess.Popen(
                [self.programs / 'ravelink', '-o', self.path, '-a', f'127.0.0.1:{self.port}'],
                stdout=subprocess.DEVNULL)

    def wait(self):
        if self.updater:
            self.updater.wait(PATIENCE)
        self.device.wait(PATIENCE)

    def kill(self):
        for program in filter(None, (self.device, self.updater)):
            program.kill()
            program.wait()

    def check(self, seen):
        size, crc = str(len(self.content)), f'0x{zlib.crc32(self.content):08x}'
        expected = {name: [] for name in EXPERTS}
        expected |= {'notification.restart': [], 'notification.status': []} | self.more
        expected |= {'request.file_size': [size], 'request.file_crc': [crc]}
        if len(self.codes) > 1:
            token = ['0x00000001']
            expected |= {'header.accept_token': token, 'header.file_size': [size],
                         'trailer.file_size': [size], 'trailer.file_crc': [crc],
                         'trailer.accept_token': token, 'notification.accept_token': token}
            lengths = [int(length) for length in seen['data.length']]
            expected['data.offset'] = [str(sum(lengths[:i])) for i in range(len(lengths))]
            seen['data'] = [bytes.fromhex(''.join(seen['data']))]
            expected['data'] = [self.content]
            seen['data.progress'] = seen['data.progress'][-1:]
            expected['data.progress'] = ['100'] if self.content else []
        seen['notification.code'] = seen['notification.code'][:len(self.codes)]
        expected['notification.code'] = self.codes
        for name, values in expected.items():
            if seen[name] != values:
                fail(f'{self.name}, ravelink.{name}: {seen[name]!s:.200}, not {values!s:.200}')


def tshark(capture, sessions, *arguments):
    decode = [word for s in sessions for word in ('-d', f'tcp.port=={s.port},ravelink')]
    ran = subprocess.run(['tshark', '-X', f'lua_script:{DISSECTOR}', '-r', capture, *decode,
                          *arguments], capture_output=True, text=True, check=False)
    errors = [line for line in ran.stdout.splitlines() if 'Lua Error' in line]
    if ran.returncode != 0 or 'lua' in ran.stderr.lower() or errors:
        fail('\n'.join(['tshark: ' + ' '.join(arguments)] + ran.stderr.splitlines()[:4] + errors[:4]))
    return ran.stdout.splitlines()


def dissected(capture, sessions, *arguments):
    """The values of each column, in their order, by the port of the device."""
    words = [word for name in COLUMNS for word in ('-e', f'ravelink.{name}')]
    found = {s.port: {name: [] for name in COLUMNS} for s in sessions}
    for line in tshark(capture, sessions, *arguments, '-Y', 'ravelink', '-T', 'fields', '-e',
                       'tcp.srcport', '-e', 'tcp.dstport', *words):
        source, target, *values = line.split('\t')
        columns = found.get(source) or found[target]
        for name, value in zip(COLUMNS, values):
            columns[name] += value.split(',') if value else []
    return found


def capture_of(sessions, path):
    ports = ' or '.join(f'tcp port {s.port}' for s in sessions)
    dumpcap = subprocess.Popen(['dumpcap', '-q', '-i', 'lo', '-f', ports, '-w', path],
                               stderr=subprocess.PIPE, text=True)
    try:
        # It names the file once it captures.
        said = []
        while not (said and said[-1].startswith('File:')):
            said.append(dumpcap.stderr.readline())
            if not said[-1]:
                fail('dumpcap: ' + ''.join(said))
        for s in sessions:
            s.start()
        for s in sessions:
            s.wait()

        def is_whole():
            # The device ends its side last, unless either side has reset the connection.
            ends = subprocess.run(
                ['tshark', '-r', path, '-Y', 'tcp.flags.fin==1 || tcp.flags.reset==1', '-T',
                 'fields', '-e', 'tcp.flags.reset', '-e', 'tcp.srcport', '-e', 'tcp.dstport'],
                capture_output=True, text=True, check=False).stdout.splitlines()
            closed = set()
            for reset, source, target in (line.split('\t') for line in ends):
                closed |= {source, target} if reset in ('1', 'True') else {source}
            return {s.port for s in sessions} <= closed
        wait_for(is_whole, 'the last packets')
    finally:
        dumpcap.send_signal(signal.SIGINT)
        dumpcap.wait(PATIENCE)


def main(programs):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        sessions = []
        try:
            for number, row in enumerate(SESSIONS):
                sessions.append(Session(number, folder, programs, row))
            capture = folder / 'sessions.pcapng'
            capture_of(sessions, capture)
        finally:
            for s in sessions:
                s.kill()
        # Once as frames come, and once as they are shown again.
        for passes in ([], ['-2']):
            found = dissected(capture, sessions, *passes)
            for s in sessions:
                s.check(found[s.port])
        damaged = folder / 'damaged.pcapng'
        # Cut frames, wrong bytes, and a capture that was started too late.
        for options, dropped in (['-s', '75'], []), (['-s', '90'], []), ([], ['1-50']), \
                (['-E', '0.002', '--seed', '1'], []), (['-E', '0.02', '--seed', '2'], []):
            subprocess.run(['editcap', *options, capture, damaged, *dropped], check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            if not any('Ravelink' in line for line in tshark(damaged, sessions, '-2', '-V')):
                fail(f'Nothing is left after editcap {" ".join(options + dropped)}')
    print(f'{len(SESSIONS)} sessions, all shown as they were')


if __name__ == '__main__':
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    if os.geteuid() != 0:
        os.execvp('unshare', ['unshare', '-rn', 'sh', '-c', 'ip link set lo up && exec "$@"', 'sh',
                              sys.executable, *sys.argv])
    main(pathlib.Path(sys.argv[1]).resolve())
