#!/usr/bin/env python3
"""dissector.py BIN: captures sessions of the programs in the directory BIN and compares the output
of the dissector in examples/wireshark with the data sent. It needs tshark, and unshare and ip for
a network namespace without other traffic."""

import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import time
import zlib

SOURCE = pathlib.Path(__file__).resolve().parents[2]
TIMEOUT = 60  # seconds for steps that take a few

CONTENT = bytes(i * i // 251 % 256 for i in range(300_001))
COMPLETE = ['0x00000001', '0x00000002', '0x00000003', '0x00000004', '0x00000005']
# Of each session, which is one connection: the scenario, the file, the codes of the notifications
# and other fields. After a record that the updater rejects, the device may or may not send more.
SESSIONS = [
    (None, CONTENT, COMPLETE, {'notification.restart': ['1']}),
    ('drip', CONTENT[:500], COMPLETE, {'notification.restart': ['1']}),
    ('together', CONTENT, COMPLETE, {'notification.restart': ['1']}),
    ('restart-power-cycle', b'', COMPLETE, {'notification.restart': ['3']}),
    ('status-06-system-busy', b'x', ['0x80000001'], {'notification.status': ['6'], 'error': ['1']}),
    ('error-alt', b'x', ['0x80000002'], {'notification.status': ['6'], 'error': ['1']}),
    ('wrong-magic', b'x', COMPLETE[:1], {'wrong_magic': ['1']}),
    ('wrong-crc', CONTENT, COMPLETE[:2], {'wrong_crc': ['1']}),
]
OPTIONAL = ['notification.restart', 'notification.status', 'wrong_magic', 'wrong_crc', 'mismatch',
              'error', 'unknown_code', 'incomplete', 'trailing_data', 'no_beginning']
COLUMNS = ['request.file_size', 'request.file_crc', 'header.accept_token', 'header.file_size',
           'data', 'data.offset', 'data.length', 'data.progress', 'trailer.file_size',
           'trailer.file_crc', 'trailer.accept_token', 'notification.code',
           'notification.accept_token'] + OPTIONAL


def send_byte_by_byte(content, address):
    """An updater that sends each byte in a segment of its own, which the real one cannot do."""
    size, crc = len(content).to_bytes(4, 'big'), zlib.crc32(content).to_bytes(4, 'big')
    magic, complement = bytes.fromhex('E8B47CC3'), bytes.fromhex('174B833C')
    with socket.create_connection((address, 3007)) as connection:
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)

        def send(data):
            for byte in data:
                connection.send(bytes([byte]))
        send(magic + size + crc + complement)
        token = connection.recv(16, socket.MSG_WAITALL)[8:12]
        send(magic + token + bytes.fromhex('00010000') + size)
        send(content + size + crc + token + magic)
        for _ in range(4):
            connection.recv(16, socket.MSG_WAITALL)


def run_session(programs, directory, address, scenario, content):
    options = ['-s', SOURCE / f'examples/scenarios/{scenario}.conf'] if scenario else []
    with subprocess.Popen([programs / 'ravelink-device', '--once', '-b', f'{address}:3007',
                           *options], stdout=subprocess.PIPE, text=True) as device:
        try:
            next(line for line in device.stdout if 'Listening on' in line)
            if scenario == 'drip':
                send_byte_by_byte(content, address)
            else:
                update = directory / 'update.rvl'
                update.write_bytes(content)
                subprocess.run([programs / 'ravelink', '-o', update, '-a', address],
                               stdout=subprocess.DEVNULL, timeout=TIMEOUT, check=True)
            device.communicate(timeout=TIMEOUT)
        finally:
            device.kill()


def capture_sessions(programs, directory, capture):
    with subprocess.Popen(['dumpcap', '-q', '-i', 'lo', '-w', capture], stderr=subprocess.PIPE,
                          text=True) as dumpcap:
        try:
            # dumpcap prints the name of the file when the capture has started.
            next(line for line in dumpcap.stderr if line.startswith('File:'))
            for number, (scenario, content, *_) in enumerate(SESSIONS, 1):
                run_session(programs, directory, f'127.0.0.{number}', scenario, content)
            end = b'after the last session'
            with socket.socket(type=socket.SOCK_DGRAM) as marker:
                marker.sendto(end, ('127.0.0.1', 9))
            give_up = time.monotonic() + TIMEOUT
            while end not in capture.read_bytes():
                if time.monotonic() > give_up:
                    sys.exit('*** The last packets are missing')
                time.sleep(0.1)
        finally:
            dumpcap.terminate()


def tshark(capture, *arguments):
    dissector = SOURCE / 'examples/wireshark/ravelink.lua'
    result = subprocess.run(['tshark', '-X', f'lua_script:{dissector}', '-r', capture, *arguments],
                         capture_output=True, text=True, check=False)
    output = result.stderr + result.stdout
    errors = [line for line in output.splitlines() if 'lua' in line.lower()]
    if result.returncode != 0 or errors:
        sys.exit('\n'.join([f'*** tshark {" ".join(arguments)}', result.stderr, *errors[:4]]))
    return result.stdout.splitlines()


def check(capture, *passes):
    """Compares the values of all columns, in order, with those of each session."""
    found = [{name: [] for name in COLUMNS} for _ in SESSIONS]
    options = [word for name in COLUMNS for word in ('-e', f'ravelink.{name}')]
    for line in tshark(capture, *passes, '-Y', 'ravelink', '-T', 'fields', '-e', 'tcp.stream',
                       *options):
        stream, *values = line.split('\t')
        for name, value in zip(COLUMNS, values):
            found[int(stream)][name] += value.split(',') if value else []
    for (scenario, content, codes, more), seen in zip(SESSIONS, found):
        size, crc, token = [str(len(content))], [f'0x{zlib.crc32(content):08x}'], ['0x00000001']
        expected = dict.fromkeys(OPTIONAL, []) | more
        expected |= {'request.file_size': size, 'request.file_crc': crc, 'notification.code': codes}
        seen['notification.code'] = seen['notification.code'][:len(codes)]
        if len(codes) > 1:
            lengths = [int(length) for length in seen['data.length']]
            seen |= {'data': ''.join(seen['data']), 'data.progress': seen['data.progress'][-1:]}
            expected |= {'header.accept_token': token, 'header.file_size': size,
                         'trailer.file_size': size, 'trailer.file_crc': crc,
                         'trailer.accept_token': token, 'notification.accept_token': token,
                         'data': content.hex(), 'data.progress': ['100'] if content else [],
                         'data.offset': [str(sum(lengths[:i])) for i in range(len(lengths))]}
        for name, values in expected.items():
            if seen[name] != values:
                sys.exit(f'*** {scenario}, {name}: {seen[name]!s:.200}, not {values!s:.200}')


def main(programs):
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        capture, damaged = directory / 'sessions.pcapng', directory / 'damaged.pcapng'
        capture_sessions(programs, directory, capture)
        # In one pass, and in two.
        check(capture)
        check(capture, '-2')
        # Truncated frames, wrong bytes, and a capture without the start.
        for options, dropped in (['-s', '75'], []), (['-s', '90'], []), ([], ['1-50']), \
                (['-E', '0.002', '--seed', '1'], []), (['-E', '0.02', '--seed', '2'], []):
            subprocess.run(['editcap', *options, capture, damaged, *dropped], check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            if not any('Ravelink' in line for line in tshark(damaged, '-2', '-V')):
                sys.exit(f'*** Nothing dissected after editcap {" ".join(options + dropped)}')
    print(f'{len(SESSIONS)} sessions dissected correctly')


if __name__ == '__main__':
    if len(sys.argv) == 2:
        os.execvp('unshare', ['unshare', '-rn', 'sh', '-c', 'ip link set lo up && exec "$@"', 'sh',
                              sys.executable, *sys.argv, 'alone'])
    if sys.argv[2:] != ['alone']:
        sys.exit(__doc__)
    main(pathlib.Path(sys.argv[1]).resolve())
