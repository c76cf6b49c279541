#!/usr/bin/env python3
"""What one user can send: flood.py MANNER [ARGUMENT]. Says "flooding" once it has sent as many messages
as there are clients.

lists FILE     fifty clients, which send lists as fast as the bus takes them; the file holds the one that is stored.
               As many send them to com.quorel.Test
reads          fifty clients, which ask how things stand as fast as the bus takes it
calls TOKEN    all the connections that a user may have: half of them register and skip, half send files with each call
"""
import os
import plistlib
import selectors
import socket
import struct
import sys

CLIENTS = 50
MOST_CLIENTS = 254
DESCRIPTORS = 16
OUTSTANDING = 128  # calls of a connection that the bus lets wait for their answers
LIMIT = 2 * 1024 * 1024       # of what the daemon reads
BUS_LIMIT = 32 * 1024 * 1024  # of a message, its header included


def padded(data, alignment=8):
    return data + bytes(-len(data) % alignment)


def call(path, receiver, interface, member, signature="", body=b"", descriptors=0, serial=7):
    fields = bytes((9, 1)) + b"u\0" + struct.pack("<I", descriptors) if descriptors else b""
    for code, kind, value in ((1, "o", path), (6, "s", receiver), (2, "s", interface), (3, "s", member),
                              (8, "g", signature)):
        length = struct.pack("<B" if kind == "g" else "<I", len(value))
        fields = padded(fields) + bytes((code, 1)) + kind.encode() + b"\0" + length + value.encode() + b"\0"
    return padded(b"l\1\0\1" + struct.pack("<III", len(body), serial, len(fields)) + fields) + body


def text(value):
    return struct.pack("<I", len(value)) + value.encode() + b"\0"


def notification(payload, receiver="com.quorel.Daemon"):
    body = padded(padded(text("DaemonMustReloadPrefs"), 4) + text("com.quorel.Daemon"), 4)
    body += struct.pack("<I", len(payload)) + payload
    return call("/com/quorel/Communication", receiver, "com.quorel.Communication1", "PostNotification", "ssay", body)


def payloads(stored):
    """Lists that are read in vain, or well nigh, and what is no list."""
    whole = plistlib.dumps(stored)
    before, after = whole.split(b"<array/>")

    def schedules(one):
        return before + b"<array>" + one * ((LIMIT - len(whole) - 20) // len(one)) + b"</array>" + after

    def binary(objects, size, offsets, references=1):
        """`offsets`: of the objects, each `size` bytes long."""
        return (b"bplist00" + objects + offsets + bytes(6) + bytes((size, references))
                + struct.pack(">QQQ", len(offsets) // size, 0, 8 + len(objects)))

    def array(references, count):
        return b"\xaf\x12" + struct.pack(">I", count) + references
    count = LIMIT // 8
    return [schedules(b"<dict><key>k</key><true/></dict>"), schedules(b"<dict/>"), whole,
            binary(array(b"\1" * count, count) + b"\x08", 4, struct.pack(">II", 8, 14 + count)),  # one value, many times
            binary(array(b"".join((1 + i).to_bytes(3, "big") for i in range(count)), count) + b"\x08", 3,
                   b"\0\0\x08" + (14 + 3 * count).to_bytes(3, "big") * count, 3),
            binary(b"\x08", 1, b"\x08" * (LIMIT - 100)), b"<plist>" + b"<array/>" * (LIMIT // 8 - 1),
            b"<plist>" + b"<a" * (LIMIT // 2 - 10), bytes(BUS_LIMIT - 1024), bytes(LIMIT + 1), b""]


def connect():
    client = socket.socket(socket.AF_UNIX)
    client.connect(os.environ["DBUS_SYSTEM_BUS_ADDRESS"].partition("=")[2])
    client.sendall(b"\0AUTH EXTERNAL " + str(os.getuid()).encode().hex().encode() + b"\r\nNEGOTIATE_UNIX_FD\r\n")
    while b"AGREE_UNIX_FD\r\n" not in client.recv(1 << 16):
        pass
    client.setblocking(False)
    client.sendall(b"BEGIN\r\n" + call("/org/freedesktop/DBus", "org.freedesktop.DBus", "org.freedesktop.DBus",
                                       "Hello"))
    return client


def flood(clients, messages, descriptors=0):
    """Without end; what is answered is read. Every other client sends as many files with each message."""
    ready = selectors.DefaultSelector()
    sent_whole = 0

    def join(number):
        files = descriptors if number % 2 else 0
        rights = [(socket.SOL_SOCKET, socket.SCM_RIGHTS, bytes(4 * files))] if files else []
        ready.register(connect(), selectors.EVENT_READ | selectors.EVENT_WRITE,
                       [number, memoryview(messages[number % len(messages)]), 0, rights])

    def serve(client, events, state):
        """Whether a message has been sent to its end."""
        _, message, sent, rights = state
        if events & selectors.EVENT_READ and not client.recv(1 << 16):
            raise ConnectionError
        if events & selectors.EVENT_WRITE:
            sent += client.sendmsg([message[sent:]], [] if sent else rights)
            state[2] = sent % len(message)
            return sent == len(message)
        return False

    for number in range(clients):
        join(number)
    while True:
        for key, events in ready.select():
            try:
                sent_whole += serve(key.fileobj, events, key.data)
            except ConnectionError:  # the bus has had enough of it
                ready.unregister(key.fileobj)
                key.fileobj.close()
                join(key.data[0])
            except OSError:
                pass  # later
            if sent_whole == clients:
                print("flooding", flush=True)
                sent_whole += 1


def held(token):
    """Calls that the daemon holds until the bus has named who calls, without and with files."""
    skipping = ("/com/quorel/Scheduler", "com.quorel.Daemon", "com.quorel.Scheduler1", "Skip", "s", text(token))
    registering = call("/com/quorel/Agents", "com.quorel.Daemon", "com.quorel.Agents1", "Register")
    return [registering + call(*skipping), call(*skipping, DESCRIPTORS)]


def main():
    manner = sys.argv[1]
    if manner == "lists":
        with open(sys.argv[2], "rb") as file:
            lists = payloads(plistlib.load(file))
        flood(2 * CLIENTS, [notification(payload, receiver) for payload in lists
                            for receiver in ("com.quorel.Daemon", "com.quorel.Test")])
    elif manner == "reads":
        flood(CLIENTS, [b"".join(call("/com/quorel/Scheduler", "com.quorel.Daemon", "com.quorel.Scheduler1", *what,
                                      serial=1 + serial) for serial in range(OUTSTANDING))
                        for what in (("Status",), ("Upcoming", "u", struct.pack("<I", 100)))])
    else:
        flood(MOST_CLIENTS, held(sys.argv[2]), DESCRIPTORS)


main()
