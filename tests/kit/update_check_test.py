#!/usr/bin/python3
"""The update check against servers that mean well and others: update_check_test.py PROBE"""
import os
import plistlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from feed_server import FeedServer, certificate, record
from private_system import read_line

PROBE = os.path.abspath(sys.argv[1])
INSTALLED = "1.0"
PAGE = "https://example.org/download"
FAILED = ("0", "-", "-")
NEWER = ("1", "9.0", PAGE)


def check(feed, ca_file="", limit=5000, version=INSTALLED, times=1, threads=1, before_each=None, **environment):
    """The probe's answers, each split into its three parts."""
    probe = subprocess.Popen([PROBE, version, ca_file, str(limit), feed, str(threads)], text=True, bufsize=1,
                             stdin=subprocess.PIPE, stdout=subprocess.PIPE, env=dict(os.environ, **environment))
    answers = []
    with probe:
        for number in range(times):
            if before_each:
                before_each(number)
            probe.stdin.write("check\n")
            answers.append(tuple(read_line(probe).split("\t")))
        probe.stdin.close()
    assert probe.returncode == 0, probe.returncode
    return answers if times > 1 else answers[0]


class UpdateCheckTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.place = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, cls.place)
        cls.trusted = certificate(cls.place, "trusted", "DNS:localhost,IP:127.0.0.1")
        cls.stranger = certificate(cls.place, "stranger", "DNS:localhost,IP:127.0.0.1")
        cls.elsewhere = certificate(cls.place, "elsewhere", "DNS:example.org")

    def test_records(self):
        server = FeedServer(self)
        for what, body, expected in (
                ("newer", record(), NEWER),
                ("with keys to come", record(Notes=["a"], Size=3), NEWER),
                ("same", record("1.0"), ("1", "-", PAGE)),
                ("format directives first", record("%n%s"), FAILED),
                ("page in a file", record(page="file:///etc/passwd"), FAILED),
                ("no page", plistlib.dumps({"Version": "9.0"}), FAILED),
                ("no version", plistlib.dumps({"URL": PAGE}), FAILED),
                ("web page", b"<html><body>Log in to this network</body></html>", FAILED),
                ("as large as allowed", record() + b" " * (65536 - len(record())), NEWER),
                ("too large", record() + b" " * (65537 - len(record())), FAILED)):
            with self.subTest(what):
                server.answers["/"] = body
                self.assertEqual(check(server.url()), expected)

    def test_answers(self):
        server = FeedServer(self)

        def status(number):
            return lambda request: request.answer(record(), number)

        def endless(request):
            request.send_response(200)
            request.end_headers()
            while True:
                request.wfile.write(b" " * 4096)

        for answer, expected in ((status(200), NEWER), (status(404), FAILED), (status(201), FAILED), (endless, FAILED)):
            with self.subTest(answer.__name__):
                server.answers["/"] = answer
                began = time.monotonic()
                self.assertEqual(check(server.url()), expected)
                self.assertLess(time.monotonic() - began, 5)  # not by the time limit

    def test_time_limit(self):
        """It holds for the whole check, however busy the server looks."""
        server = FeedServer(self)

        def silent(_):
            time.sleep(8)

        def slow_redirects(request):
            time.sleep(0.5)
            request.answer(status=302, Location=request.path + "x")

        server.answers["/silent"] = silent
        # Without the limit the check would come through, after two seconds.
        server.answers.update({"/slow" + "x" * count: slow_redirects for count in range(3)})
        server.answers["/slowxxx"] = record()
        for feed in (server.url("/silent"), server.url("/slow")):
            with self.subTest(feed):
                began = time.monotonic()
                self.assertEqual(check(feed, limit=1000), FAILED)
                self.assertTrue(0.9 < time.monotonic() - began < 4, time.monotonic() - began)

    def test_redirections(self):
        with open(f"{self.place}/record.plist", "wb") as file:
            file.write(record())
        plain = FeedServer(self)
        secure = FeedServer(self, self.trusted)

        def to(address):
            return lambda request: request.answer(status=302, Location=address)

        for server in (plain, secure):
            server.answers["/record"] = record()
            for count in range(1, 5):
                server.answers[f"/{count}"] = to(f"/{count - 1}" if count > 1 else "/record")
            server.answers["/file"] = to(f"file://{self.place}/record.plist")
            server.answers["/stranger"] = to("http://192.0.2.1/record")
            server.answers["/user"] = to(server.url("/record", "user:password@127.0.0.1"))
        secure.answers["/plain"] = to(plain.url("/record"))
        plain.answers["/secure"] = to(secure.url("/record"))

        for server, path, expected, requests in (
                (plain, "/3", NEWER, 4), (plain, "/4", FAILED, 4), (plain, "/file", FAILED, 1),
                (plain, "/stranger", FAILED, 1), (plain, "/user", FAILED, 1), (plain, "/secure", NEWER, 2),
                (secure, "/3", NEWER, 4), (secure, "/plain", FAILED, 1)):
            with self.subTest(server.url(path)):
                plain.requests.clear()
                secure.requests.clear()
                self.assertEqual(check(server.url(path), self.trusted, http_proxy=plain.url()), expected)
                self.assertEqual(len(plain.requests) + len(secure.requests), requests)

    def test_certificates(self):
        trusted, stranger, elsewhere = (FeedServer(self, file) for file in
                                        (self.trusted, self.stranger, self.elsewhere))
        for server in (trusted, stranger, elsewhere):
            server.answers["/"] = record()
        for what, server, host, authority, expected in (
                ("good", trusted, "localhost", self.trusted, NEWER),
                ("not the system's", trusted, "localhost", "", FAILED),
                ("of somebody else", stranger, "localhost", self.trusted, FAILED),
                ("for another host", elsewhere, "localhost", self.elsewhere, FAILED)):
            with self.subTest(what):
                server.requests.clear()
                self.assertEqual(check(server.url(host=host), authority), expected)
                # Whoever cannot be trusted is not even asked.
                self.assertEqual(len(server.requests), int(expected == NEWER))

    def test_feeds_that_are_not_asked(self):
        server = FeedServer(self)
        server.answers["/"] = record()
        with open(f"{self.place}/record.plist", "wb") as file:
            file.write(record())
        for feed in ("", f"file://{self.place}/record.plist", "http://192.0.2.1/"):
            with self.subTest(feed):
                began = time.monotonic()
                # A proxy would show that something leaves the computer.
                self.assertEqual(check(feed, http_proxy=server.url()), FAILED)
                self.assertLess(time.monotonic() - began, 1)
        self.assertEqual(server.requests, [])

    def test_what_the_server_learns(self):
        server = FeedServer(self)
        server.answers["/"] = lambda request: request.answer(record(), **{"Set-Cookie": "who=you"})
        home = {"HOME": self.place, "http_proxy": "http://127.0.0.1:9/", "all_proxy": "http://127.0.0.1:9/"}
        with open(f"{self.place}/.netrc", "w") as file:
            file.write("machine 127.0.0.1 login user password secret\n")
        self.assertEqual(check(server.url(), times=2, **home), [NEWER, NEWER])
        for _, fields in server.requests:
            self.assertEqual(sorted(fields.keys()), ["Accept", "Host", "User-Agent"])
            self.assertEqual(fields["User-Agent"], f"Quorel/{INSTALLED}")

    def test_failure_leaves_what_was_found(self):
        server = FeedServer(self)
        bodies = [b"", record(), b"", record("9.1"), record("0.1")]

        def answer_differently(number):
            server.answers["/"] = bodies[number]
        self.assertEqual(check(server.url(), times=5, before_each=answer_differently),
                         [FAILED, NEWER, ("0", "9.0", PAGE), ("1", "9.1", PAGE), ("1", "-", PAGE)])

    def test_side_by_side(self):
        server = FeedServer(self, self.trusted)
        server.answers["/"] = record()
        self.assertEqual(check(server.url(), self.trusted, limit=20000, threads=8, times=5), [("8", "9.0", PAGE)] * 5)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
