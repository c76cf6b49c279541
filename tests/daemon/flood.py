#!/usr/bin/env python3
"""Fifty clients of one user that call the daemon as fast as the bus takes it, answers unread: flood.py FILE

The file holds the list that is stored. Says "flooding" once every client has sent something."""
import os
import plistlib
import selectors
import socket
import struct
import sys

CLIENTS = 50
LIMIT = 2 * 1024 * 1024       # of what the daemon reads
BUS_LIMIT = 32 * 1024 * 1024  # of a message, its header included


def padded(data, alignment=8):
    return data + bytes(-len(data) % alignment)


def call(path, receiver, interface, member, signature="", body=b""):
    fields = b""
    for code, kind, value in ((1, "o", path), (6, "s", receiver), (2, "s", interface), (3, "s", member),
                              (8, "g", signature)):
        length = struct.pack("<B" if kind == "g" else "<I", len(value))
        fields = padded(fields) + bytes((code, 1)) + kind.encode() + b"\0" + length + value.encode() + b"\0"
    return padded(b"l\1\0\1" + struct.pack("<III", len(body), 7, len(fields)) + fields) + body


def text(value):
    return struct.pack("<I", len(value)) + value.encode() + b"\0"


def notification(payload):
    body = padded(padded(text("DaemonMustReloadPrefs"), 4) + text("com.quorel.Daemon"), 4)
    body += struct.pack("<I", len(payload)) + payload
    return call("/com/quorel/Communication", "com.quorel.Daemon", "com.quorel.Communication1", "PostNotification",
                "ssay", body)


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
    client.sendall(b"\0AUTH EXTERNAL " + str(os.getuid()).encode().hex().encode() + b"\r\nBEGIN\r\n")
    client.sendall(call("/org/freedesktop/DBus", "org.freedesktop.DBus", "org.freedesktop.DBus", "Hello"))
    client.setblocking(False)
    return client


def main():
    with open(sys.argv[1], "rb") as file:
        messages = [notification(payload) for payload in payloads(plistlib.load(file))]
    ready = selectors.DefaultSelector()
    for number in range(CLIENTS):
        message = memoryview(messages[number % len(messages)])
        ready.register(connect(), selectors.EVENT_READ | selectors.EVENT_WRITE, [message, 0])
    unheard = CLIENTS
    while True:
        for key, events in ready.select():
            if events & selectors.EVENT_READ and not key.fileobj.recv(1 << 16):
                raise RuntimeError("the bus has closed a connection")
            if events & selectors.EVENT_WRITE:
                message, sent = key.data
                try:
                    sent += key.fileobj.send(message[sent:])
                except BlockingIOError:
                    continue
                if sent == len(message):
                    unheard -= unheard > 0 and 1
                    if unheard == 0:
                        print("flooding", flush=True)
                        unheard = -1
                    sent = 0
                key.data[1] = sent


main()
