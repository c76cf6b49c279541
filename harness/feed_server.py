"""A loopback update feed that answers as told."""
import http.server
import os
import plistlib
import ssl
import subprocess
import threading


def installed_version():
    """What the product calls itself: the newest entry of the package's changelog."""
    with open(f"{os.path.dirname(os.path.abspath(__file__))}/../debian/changelog", encoding="utf-8") as file:
        return file.readline().split("(")[1].split(")")[0]


def record(version="9.0", page="https://example.org/download", **more):
    return plistlib.dumps({"Version": version, "URL": page, **more})


def certificate(folder, name="feed", subject="IP:127.0.0.1"):
    """A certificate that vouches for itself, and its key, in one file."""
    path = f"{folder}/{name}.pem"
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-noenc",
                    "-days", "2", "-subj", "/CN=test", "-addext", f"subjectAltName={subject}",
                    "-keyout", path, "-out", f"{path}.crt"], check=True, stderr=subprocess.DEVNULL)
    with open(path, "ab") as both, open(f"{path}.crt", "rb") as public:
        both.write(public.read())
    return path


class FeedServer:
    """HTTP on a free port of 127.0.0.1, or HTTPS with `certificate`, a file that holds its key too.

    `answers` maps paths to what is answered there: bytes, or a function of the request's handler. All others are
    answered with 404. `requests` lists who has asked what: pairs of the path and the header fields."""

    def __init__(self, test, certificate=None):
        self.answers = {}
        self.requests = []
        owner = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.0"

            def do_GET(self):
                owner.requests.append((self.path, self.headers))
                answer = owner.answers.get(self.path)
                try:
                    if callable(answer):
                        answer(self)
                    elif answer is None:
                        self.send_error(404)
                    else:
                        self.answer(answer)
                except OSError:
                    pass  # the client has had enough

            def answer(self, body=b"", status=200, **fields):
                self.send_response(status)
                for name, value in fields.items():
                    self.send_header(name, value)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        class Server(http.server.ThreadingHTTPServer):
            def handle_error(self, *_):
                pass  # a client that refuses the certificate

        self.server = Server(("127.0.0.1", 0), Handler)
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate)
            # The handshake must not hold up the other connections.
            self.server.socket = context.wrap_socket(self.server.socket, server_side=True,
                                                     do_handshake_on_connect=False)
        self.port = self.server.server_port
        self.scheme = "https" if certificate else "http"
        thread = threading.Thread(target=self.server.serve_forever, kwargs={"poll_interval": 0.01})
        thread.start()

        def end():
            self.server.shutdown()
            thread.join()
            self.server.server_close()
        self.server.daemon_threads = True
        test.addCleanup(end)

    def url(self, path="/", host="127.0.0.1"):
        return f"{self.scheme}://{host}:{self.port}{path}"
