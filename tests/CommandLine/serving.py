"""A quaverly that serves, and a browser and a page of a test's own, down to the bytes."""
import base64
import json
import os
import re
import select
import signal
import socket
import struct
import subprocess
import time

import program
from program import ProgramTest

ADDRESS = re.compile(r"^(http://127\.0\.0\.1:(\d+))/\?token=([0-9a-f]{32})$")


class Serving:
    """A running `quaverly serve` whose address is known."""

    def __init__(self, test, *arguments, **environment):
        self.process = subprocess.Popen([program.PROGRAM, *map(os.fsencode, arguments)], cwd=test.home,
                                        env=test.environment(**environment), stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, bufsize=0)
        self.test = test
        test.addCleanup(self.kill)
        self.line = self.process.stdout.readline().decode().rstrip("\n")
        match = ADDRESS.match(self.line)
        if match:
            self.origin, self.token = match.group(1), match.group(3)
            self.port = int(match.group(2))

    def stop(self, how=signal.SIGTERM):
        """Ends it politely; its status, and what else it said."""
        self.process.send_signal(how)
        out, err = self.process.communicate(timeout=30)
        return self.process.returncode, out, err.decode()

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.communicate()

    def resident(self):
        """Bytes of memory in use."""
        with open(f"/proc/{self.process.pid}/status", encoding="utf-8") as status:
            return next(int(line.split()[1]) * 1024 for line in status if line.startswith("VmRSS"))

    def connect(self):
        return socket.create_connection(("127.0.0.1", self.port), timeout=10)

    def enter(self):
        """Gets the cookie for the token, as a browser does."""
        head, _ = self.ask(f"/?token={self.token}")
        self.cookie = re.search(r"Set-Cookie: ([^;]+);", head).group(1)
        return self

    def ask(self, path, **fields):
        """The head and the body of the answer to a GET."""
        with self.connect() as connection:
            connection.sendall(self.request(path, fields))
            answer = b""
            while more := connection.recv(65536):
                answer += more
        head, _, body = answer.partition(b"\r\n\r\n")
        return head.decode(), body

    def request(self, path, fields):
        fields = {"Host": f"127.0.0.1:{self.port}", "Connection": "close", "Cookie": getattr(self, "cookie", "none"),
                  **fields}
        lines = [f"GET {path} HTTP/1.1"] + [f"{name.replace('_', '-')}: {value}" for name, value in fields.items()]
        return ("\r\n".join(lines) + "\r\n\r\n").encode()

    def page(self):
        page = Page(self)
        self.test.addCleanup(page.close)
        return page


class Page:
    """A page's WebSocket."""

    def __init__(self, serving):
        self.socket = serving.connect()
        key = base64.b64encode(os.urandom(16)).decode()
        self.socket.sendall(serving.request("/socket", {
            "Connection": "Upgrade", "Upgrade": "websocket", "Origin": serving.origin, "Sec-WebSocket-Key": key,
            "Sec-WebSocket-Version": "13"}))
        self.received = b""
        while b"\r\n\r\n" not in self.received:
            self.more()
        head, _, self.received = self.received.partition(b"\r\n\r\n")
        assert b" 101 " in head, head

    def more(self):
        data = self.socket.recv(65536)
        if not data:
            raise EOFError
        self.received += data

    @staticmethod
    def frame(payload, first=0x81):
        size = len(payload)
        head = bytes([first, 0x80 | (size if size < 126 else 126 if size < 65536 else 127)])
        if size >= 126:
            head += struct.pack("!H" if size < 65536 else "!Q", size)
        return head + b"\0\0\0\0" + payload

    def send(self, message):
        self.socket.sendall(self.frame(json.dumps(message).encode()))

    def receive(self):
        """The next message."""
        while True:
            if len(self.received) >= 2:
                size, start = self.received[1], 2
                if size == 126 and len(self.received) >= 4:
                    size, start = struct.unpack("!H", self.received[2:4])[0], 4
                elif size == 127 and len(self.received) >= 10:
                    size, start = struct.unpack("!Q", self.received[2:10])[0], 10
                is_known = self.received[1] < 126 or start > 2
                if is_known and len(self.received) >= start + size:
                    payload = self.received[start:start + size]
                    self.received = self.received[start + size:]
                    return json.loads(payload)
            self.more()

    def await_item(self, kind, condition):
        """The first item of a message of this type for which the condition holds."""
        while True:
            message = self.receive()
            for item in message.get("items", []) if message["type"] == kind else []:
                if condition(item):
                    return item

    def close(self):
        self.socket.close()


class ServingTest(ProgramTest):
    def serve(self, *arguments, **environment):
        return Serving(self, "serve", "--no-browser", *arguments, **environment)

    def begin(self, *arguments):
        """A command that goes on while the test does."""
        process = subprocess.Popen([program.PROGRAM, *map(os.fsencode, arguments)], cwd=self.home,
                                   env=self.environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE, bufsize=0)
        self.addCleanup(process.kill)
        return process

    def await_that(self, condition, seconds=30):
        deadline = time.monotonic() + seconds
        while not condition():
            self.assertLess(time.monotonic(), deadline, "it did not come to that")
            select.select([], [], [], 0.02)
