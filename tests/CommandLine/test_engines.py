import json
import os
import signal
import socket
import subprocess
import time
import unittest

import program
from program import ProgramTest

TITLES = {"direct.qvsc": "Direct links", "feeds.qvsc": "Feeds", "playlists.qvsc": "Playlists"}


class Bus:
    """A session bus of a test's own, and D-Bus's own monitor, which records what is on it."""

    def __init__(self):
        self.daemon = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"],
                                       stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.address = self.daemon.stdout.readline().decode().strip()
        self.monitor = subprocess.Popen(["dbus-monitor", "--address", self.address, "--binary"],
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        while b"NameLost" not in self.message():
            pass

    def close(self):
        for process in (self.monitor, self.daemon):
            process.send_signal(signal.SIGKILL)
            process.wait()
            process.stdout.close()

    def message(self):
        """The next message, as it is on the wire."""
        head = self.monitor.stdout.read(16)
        order = "little" if head[:1] == b"l" else "big"
        body, fields = (int.from_bytes(head[at:at + 4], order) for at in (4, 12))
        return head + self.monitor.stdout.read((fields + 7) // 8 * 8 + body)

    def calls(self):
        """The method calls for the add-on since the last time."""
        subprocess.run(["dbus-send", f"--bus={self.address}", "/", "org.example.Marker.End"], check=True)
        found = []
        while b"org.example.Marker" not in (message := self.message()):
            if b"com.tolmarin.quaverly" in message and message[1] == 1:
                found.append(message)
        return found


class Engines(ProgramTest):
    def engine(self, name):
        return json.loads((self.data / "engines" / name).read_text("utf-8"))

    def write(self, name, text):
        self.run_program("engines")
        (self.data / "engines" / name).write_text(text, "utf-8")

    def test_lists_the_engines_that_come_with_the_program(self):
        for command in (["engines"], ["engines", "list"]):
            engines = self.run_program(*command, "--json").objects
            self.assertEqual({e["file"]: e["title"] for e in engines}, TITLES)
            for engine in engines:
                self.assertEqual(list(engine), ["file", "title", "engine", "version", "developer", "enabled"])
            text = self.run_program(*command).out.decode()
            self.assertEqual(len(text.splitlines()), 3)
            self.assertIn("Playlists", text)

    def test_switches_by_title_and_by_file_name(self):
        for name in ("Playlists", "playlists.qvsc", "playlists"):
            for command, state in (("enable", True), ("disable", False)):
                result = self.run_program("engines", command, name, "--json")
                self.assertEqual((result.status, result.object["enabled"]), (0, state), name)
                self.assertIs(self.engine("playlists.qvsc")["enabled"], state)

    def test_everything_else_in_the_file_stays(self):
        self.write("mine.qvsc", '{"z": 1.10, "title": "Mine", "n": 12345678901234567890, "a": {"b": []}}')
        self.assertEqual(self.run_program("engines", "enable", "Mine").status, 0)
        text = (self.data / "engines/mine.qvsc").read_text("utf-8")
        self.assertEqual(list(json.loads(text)), ["z", "title", "n", "a", "enabled"])
        for kept in ("1.10", "12345678901234567890"):
            self.assertIn(kept, text)

    def test_an_unknown_name_is_an_error_that_says_what_there_is(self):
        result = self.run_program("engines", "enable", "Nothing")
        self.assertEqual((result.status, len(result.errors)), (1, 1))
        for name in ("Nothing", *TITLES, *TITLES.values()):
            self.assertIn(name, result.errors[0])

    def test_an_ambiguous_name_is_an_error_and_the_file_name_helps(self):
        self.write("another.qvsc", '{"title": "Feeds", "enabled": false}')
        result = self.run_program("engines", "disable", "Feeds")
        self.assertEqual(result.status, 1)
        self.assertIn("feeds.qvsc", result.errors[0])
        self.assertIn("another.qvsc", result.errors[0])
        self.assertTrue(self.engine("feeds.qvsc")["enabled"])
        self.assertEqual(self.run_program("engines", "disable", "feeds.qvsc").status, 0)
        self.assertFalse(self.engine("feeds.qvsc")["enabled"])

    def test_a_damaged_file_is_listed_and_said(self):
        for text in ("no JSON", '{"a":' * 100_000, "[]"):
            self.write("bad.qvsc", text)
            engine = [e for e in self.run_program("engines", "--json").objects if e["file"] == "bad.qvsc"]
            self.assertEqual([(e["title"], e["enabled"]) for e in engine], [("", None)])
            result = self.run_program("engines", "enable", "bad.qvsc")
            self.assertEqual(result.status, 1)
            self.assertIn("damaged", result.errors[0])
            self.assertEqual((self.data / "engines/bad.qvsc").read_text("utf-8"), text)

    def test_a_folder_that_cannot_be_written_is_said(self):
        self.run_program("engines")
        before = (self.data / "engines/feeds.qvsc").read_bytes()
        folder = self.data / "engines"
        # A changed root has no propagation that could be cut, so that the mount is taken down again.
        frozen = ["unshare", "--mount", "--propagation", "unchanged"]
        frozen += [] if os.getuid() == 0 else ["--map-root-user"]
        script = f"mount --bind -o ro '{folder}' '{folder}' && {{ \"$@\"; status=$?; umount '{folder}'; exit $status; }}"
        process = subprocess.run([*frozen, "sh", "-c", script, "sh", program.PROGRAM, "engines", "disable", "Feeds"],
                                 capture_output=True, env=self.environment(), check=False, timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assertIn("Read-only file system", process.stderr.decode())
        self.assertEqual((folder / "feeds.qvsc").read_bytes(), before)

    def test_a_data_folder_that_cannot_be_made_is_said_and_the_engines_are_listed(self):
        blocked = self.home / "file"
        blocked.write_text("")
        result = self.run_program("engines", "--json", "--data", blocked / "data")
        self.assertEqual(result.status, 1)
        self.assertEqual({e["file"] for e in result.objects}, set(TITLES))
        self.assertIn(str(blocked), result.errors[0])

    def test_the_command_line_is_checked(self):
        for wrong in (["engines", "enable"], ["engines", "dance"], ["engines", "enable", "a", "b"]):
            self.assertEqual(self.run_program(*wrong).status, 2, wrong)


class Messages(ProgramTest):
    def setUp(self):
        super().setUp()
        self.bus = Bus()
        self.addCleanup(self.bus.close)

    def turn(self, *arguments, bus=None):
        env = {"DBUS_SESSION_BUS_ADDRESS": bus or self.bus.address}
        # Not in a network of its own, where an abstract socket could not be reached.
        return subprocess.run([program.PROGRAM, "engines", *arguments], env=self.environment(**env),
                              capture_output=True, check=False, timeout=60)

    def test_each_change_sends_one_call_that_wants_no_reply(self):
        for command in ("disable", "enable"):
            self.assertEqual(self.turn(command, "Feeds").returncode, 0)
            (call,) = self.bus.calls()
            self.assertEqual(call[2] & 1, 1, "no reply expected")
            for part in (b"com.tolmarin.quaverly\0", b"/com/tolmarin/quaverly\0", b"enginesChanged\0"):
                self.assertIn(part, call)

    def test_no_change_sends_nothing(self):
        self.turn("enable", "Feeds")
        self.turn("list")
        self.turn("enable", "Nothing")
        self.assertEqual(self.bus.calls(), [])

    def test_without_a_bus_nothing_is_said(self):
        result = self.turn("disable", "Feeds", bus="unix:path=/nowhere")
        self.assertEqual((result.returncode, result.stderr), (0, b""))

    def test_a_silent_bus_holds_the_program_no_longer_than_two_seconds(self):
        path = str(self.home / "bus")
        with socket.socket(socket.AF_UNIX) as silent:
            silent.bind(path)
            silent.listen()
            began = time.monotonic()
            result = self.turn("disable", "Feeds", bus=f"unix:path={path}")
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            self.assertLess(time.monotonic() - began, 6)


if __name__ == "__main__":
    unittest.main(verbosity=2)
