"""What a person sees on a terminal, and what a pipe gets instead."""
import os
import pty
import subprocess

import program
from program import LANTERN, ProgramTest


class Terminal(ProgramTest):
    def on_terminal(self, *arguments, env=None):
        """Runs with standard error on a terminal; returns what the terminal was sent."""
        leader, follower = pty.openpty()
        process = subprocess.Popen(self.command(*arguments), env=self.environment(**(env or {})),
                                   stdout=subprocess.DEVNULL, stderr=follower)
        os.close(follower)
        seen = b""
        while True:
            try:
                part = os.read(leader, 65536)
            except OSError:  # the other end has gone
                break
            if not part:
                break
            seen += part
        os.close(leader)
        process.wait(timeout=30)
        return seen.decode()

    def big_song(self):
        song = self.copy(LANTERN, "big.mp3")
        audio = LANTERN.read_bytes()[-100_000:]
        with open(song, "ab") as file:
            for _ in range(600):
                file.write(audio)
        return song

    def test_a_terminal_shows_a_bar_with_bytes_and_speed(self):
        seen = self.on_terminal("import", self.big_song())
        self.assertRegex(seen, r"\[[#.]{24}\] [\d.]+ \w+ / [\d.]+ MB, [\d.]+ \w+/s  big\.mp3")
        self.assertTrue(seen.endswith("\r\x1b[K"), "the bar is taken away at the end")

    def test_a_pipe_gets_a_line_a_file_and_no_bar(self):
        result = self.run_program("import", LANTERN)
        self.assertEqual(len(result.out.splitlines()), 1)
        self.assertEqual(result.err, b"")

    def test_json_and_quiet_show_no_bar(self):
        for flag in ("--json", "--quiet"):
            self.assertEqual(self.on_terminal("import", flag, LANTERN), "")
            subprocess.run(["rm", "-rf", self.library, self.data], check=True)

    def test_problems_are_coloured_unless_somebody_objects(self):
        self.assertIn("\x1b[31m", self.on_terminal("import", "none.mp3"))
        self.assertNotIn("\x1b[31m", self.on_terminal("import", "none.mp3", env={"NO_COLOR": "1"}))
        self.assertIn("\x1b[31m", self.on_terminal("import", "none.mp3", env={"NO_COLOR": ""}))
        self.assertNotIn(b"\x1b", self.run_program("import", "none.mp3").err)


if __name__ == "__main__":
    program.main()
