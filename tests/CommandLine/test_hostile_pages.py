"""Whatever a page or a program sends to the page's server, the device goes on and an honest page is answered."""
import os
import socket
import time

import program
from program import LANTERN
from serving import Page, ServingTest


class HostilePages(ServingTest):
    def setUp(self):
        super().setUp()
        self.serving = self.serve().enter()
        self.honest = self.serving.page()
        self.honest.receive()
        self.honest.receive()
        self.before = self.serving.resident()

    def check_unharmed(self):
        """An honest page is answered within a second, songs are filed, and nothing has piled up."""
        start = time.monotonic()
        self.assertIn(" 200 ", self.serving.ask(f"/?token={self.serving.token}")[0])
        self.honest.send({"type": "retry", "id": 999})
        self.assertEqual(self.honest.receive()["type"], "problem")
        self.assertLess(time.monotonic() - start, 1)
        self.assertEqual(self.run_program("import", LANTERN).status, 0)
        if "ASAN_OPTIONS" not in os.environ:  # the address sanitizer keeps what was freed
            self.assertLess(self.serving.resident(), self.before + 24 * 1024 * 1024)
        self.assertEqual(self.serving.stop(), (0, b"", ""))

    def raw(self, data):
        connection = self.serving.connect()
        self.addCleanup(connection.close)
        connection.settimeout(0.2)
        try:
            connection.sendall(data)
        except (OSError, socket.timeout):
            pass
        return connection

    def test_twenty_thousand_events_a_second(self):
        page = self.serving.page()
        events = Page.frame(b'{"type":"tap","node":1}') * 20_000
        page.socket.settimeout(0.05)
        deadline, sent = time.monotonic() + 2, 0
        while time.monotonic() < deadline:
            try:
                sent += page.socket.send(events[sent % len(events):])
            except (BlockingIOError, socket.timeout):
                pass
        self.check_unharmed()

    def test_events_that_cost_an_answer(self):
        page = self.serving.page()
        page.socket.settimeout(0.05)
        frames = Page.frame(b'{"type":"more-library","before":9}') * 5_000
        try:
            page.socket.sendall(frames)
        except (OSError, socket.timeout):
            pass
        self.check_unharmed()

    def test_rubbish_in_messages(self):
        page = self.serving.page()
        for text in (b"", b"{", b"[]", b"null", b'"retry"', b'{"type":"retry"}', b'{"type":"retry","id":"x"}',
                     b'{"type":"retry","id":1e99}', b'{"type":["retry"]}', b'{"type":"more-library","before":-1}',
                     b'{"type":"more-library","before":99999999999999999999999}', b"[" * 60_000 + b'"retry"'):
            page.socket.sendall(Page.frame(text))
        self.check_unharmed()

    def test_rubbish_in_frames_and_frames_too_long(self):
        for data in (b"\xff" * 100, Page.frame(b"x" * 100_000), Page.frame(b"\xff\xfe"), b"\x81\x05hello",
                     Page.frame(b"", 0x89) * 10_000, Page.frame(b"", 0x01) + Page.frame(b"", 0x00) * 10_000,
                     b"\x81\xff\x7f" + b"\xff" * 7 + b"mask"):
            page = self.serving.page()
            page.socket.settimeout(0.2)
            try:
                page.socket.sendall(data)
            except (OSError, socket.timeout):
                pass
        self.check_unharmed()

    def test_heads_that_never_end(self):
        for _ in range(300):
            self.raw(b"GET / HTTP/1.1\r\nX: ")
        self.check_unharmed()

    def test_rubbish_and_long_heads(self):
        for first in range(0, 256, 5):
            self.raw(bytes([first]) + b"\xff" * 20_000)
        self.raw(b"GET /" + b"x" * 1_000_000)
        self.raw(b"POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 999999999999\r\n\r\n" + b"x" * 1_000_000)
        self.check_unharmed()

    def test_pages_that_never_read(self):
        self.assertEqual(self.run_program("import", LANTERN).status, 0)
        self.assertTrue(self.honest.await_item("library", lambda item: True))
        for _ in range(10):
            page = self.serving.page()
            page.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
            page.socket.sendall(Page.frame(b'{"type":"more-library","before":9}') * 100)
            self.raw(self.serving.request("/library/audio/1", {}) * 10)
        self.check_unharmed()


if __name__ == "__main__":
    program.enter_own_network()
    program.main()
