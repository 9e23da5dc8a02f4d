#!/usr/bin/env python3
"""Members built for Windows and members built for this system in one group, on one port of the loopback.

usage: mixed_group_test.py NATIVE_MEMBER RUN_WINE WINDOWS_MEMBER

Ends with 77, and the reason, where there is no native member to meet.
"""
import os
import queue
import signal
import socket
import struct
import subprocess
import sys
import threading
import time

LOOPBACK = '127.0.0.1'
BROADCAST = '127.255.255.255'
PATIENCE = 30
TIME_LIMIT = 150
VERSION_1 = struct.Struct('<IQBB')
VERSION_2 = struct.Struct('<II16sQBBB')
REJECTED = 'Resource Manager: rejected invalid network packet from: 127.0.0.1'


def free_port():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as probe:
        probe.bind((LOOPBACK, 0))
        return probe.getsockname()[1]


def sender(source):
    """A socket that sends to the group from an address of choice."""
    out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    out.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
    out.bind((source, 0))
    return out


class Wire:
    """A plain socket that hears what the group says."""

    def __init__(self, port):
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.socket.bind((BROADCAST, port))
        self.socket.settimeout(PATIENCE)

    def receive(self):
        datagram, source = self.socket.recvfrom(65536)
        assert source[0] == LOOPBACK, f'a member sends from {source[0]}'
        return datagram

    def receive_from(self, pid, form):
        """The next datagram of a member, by its process id."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            datagram = self.receive()
            if len(datagram) == form.size and form.unpack(datagram)[form is VERSION_2] == pid:
                return form.unpack(datagram)
        raise AssertionError(f'nothing heard from process {pid}')


class Member:
    """A member in a process of its own, seen through its lines."""

    def __init__(self, name, command, port, version):
        self.name, self.version = name, version
        self.process = start(command + [str(port), str(1 << 40), str(1 << 50), '0', str(version)])
        self.lines = []
        self.news = queue.Queue()
        threading.Thread(target=self.listen, daemon=True).start()
        self.await_line(lambda line: line == 'READY', 'started')
        self.tell('pid')
        self.pid = int(self.await_line(lambda line: line.startswith('PID '), 'told its pid').split()[1])

    def listen(self):
        for line in self.process.stdout:
            self.news.put(line.rstrip('\r\n'))

    def tell(self, command):
        self.process.stdin.write(command + '\n')
        self.process.stdin.flush()

    def await_line(self, wanted, what, patience=PATIENCE):
        """The first line from now on that is wanted."""
        end = time.monotonic() + patience
        while True:
            try:
                line = self.news.get(timeout=max(0, end - time.monotonic()))
            except queue.Empty:
                raise AssertionError(f'{self.name} never {what}; its last lines: {self.lines[-5:]}') from None
            self.lines.append(line)
            if wanted(line):
                return line

    def await_count(self, count):
        # What was said before does not count.
        while not self.news.empty():
            self.lines.append(self.news.get())
        for patience in (8, 8, 8, PATIENCE):
            try:
                return self.await_line(lambda line: line.endswith(f'; {count} (info count)'), f'counted {count} members', patience)
            except AssertionError as failure:
                last = failure
                self.put_out_of_step()
        raise last

    def put_out_of_step(self):
        """Holds the member over the time of its next check. One that always checks a moment before another is heard finds
        that one just aged out, for as long as the two keep step."""
        os.killpg(self.process.pid, signal.SIGSTOP)
        time.sleep(1.1)
        os.killpg(self.process.pid, signal.SIGCONT)

    def quit(self):
        self.tell('quit')
        code = self.process.wait(PATIENCE)
        assert code == 0, f'{self.name} ended with {code}'


processes = []


def start(command):
    process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, start_new_session=True,
                               env={**os.environ, 'QILSYS_WINE_STDIN': '1', 'QILSYS_WINE_TIME_LIMIT': str(TIME_LIMIT)})
    processes.append(process)
    return process


def kill_all():
    for process in processes:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def check_bytes(commands):
    """The same figures are the same bytes, whoever sends them."""
    expected = [VERSION_2.pack(2, 0x04030201, bytes(range(0xA0, 0xB0)), 0x1817161514131211, 0x21, 0x22, 0x23),
                VERSION_1.pack(0x04030201, 0x1817161514131211, 0x21, 0x22)]
    for name, command in commands.items():
        port = free_port()
        wire = Wire(port)
        code = start(command + ['send', str(port)]).wait(PATIENCE)
        assert code == 0, f'the sender for {name} ended with {code}'
        sent = [wire.receive(), wire.receive()]
        assert sent == expected, f'{name} sent {[s.hex() for s in sent]}, not {[e.hex() for e in expected]}'


def check_datagram(wire, member):
    if member.version == 1:
        _, memory, memory_percent, cpu = wire.receive_from(member.pid, VERSION_1)
    else:
        version, _, identity, memory, memory_percent, cpu, interval = wire.receive_from(member.pid, VERSION_2)
        assert version == 2 and interval == 1, f'{member.name} states version {version} and interval {interval}'
        assert identity[6] >> 4 == 4 and identity[8] >> 6 == 2, f'{member.name} has the identity {identity.hex()}'
    assert 0 < memory < 1 << 32, f'{member.name} uses {memory} bytes'
    assert memory_percent == 0 and cpu == 0, f'{member.name} uses {memory_percent} % and {cpu} %'


def check_group(commands):
    port = free_port()
    wire = Wire(port)
    members = [Member(f'{name}, version {version}', command, port, version)
               for version in (2, 1) for name, command in commands.items()]
    for member in members:
        member.await_count(len(members))
        check_datagram(wire, member)

    stranger = VERSION_2.pack(2, 1, b'\x01' * 16, 1, 0, 0, 255)
    for length in (14, 35, 36, 2000):
        sender('127.0.0.2').sendto(b'\x55' * length, (BROADCAST, port))
    for member in members:
        member.await_count(len(members))

    for length in (36, 2000):
        sender(LOOPBACK).sendto(b'\x55' * length, (BROADCAST, port))
    sender(LOOPBACK).sendto(stranger, (BROADCAST, port))
    for member in members:
        member.await_count(len(members) + 1)

    for member in members:
        member.quit()
    for member in members:
        while not member.news.empty():
            member.lines.append(member.news.get())
        count = member.lines.count(REJECTED)
        assert count == 2, f'{member.name} rejected {count} datagrams'


def main():
    native, run_wine, windows = sys.argv[1:]
    if not os.access(native, os.X_OK):
        print(f'left out: {native} is not there; the preset "release" builds it as monitor_member')
        return 77
    signal.signal(signal.SIGALRM, lambda *_: sys.exit('the time limit ran out'))
    signal.alarm(TIME_LIMIT)
    commands = {'Linux': [native], 'Windows': [run_wine, windows]}
    try:
        check_bytes(commands)
        check_group(commands)
    except AssertionError as failure:
        print(f'failed: {failure}')
        return 1
    finally:
        kill_all()
    print('two members of each system heard each other, and said the same in the same bytes')
    return 0


if __name__ == '__main__':
    sys.exit(main())
