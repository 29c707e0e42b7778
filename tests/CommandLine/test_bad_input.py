import os
import subprocess
import sys

import program
from program import LANTERN, ProgramTest

# Another program on the port, for as long as a test may take.
HOLD_PORT = f"""timeout 20 {sys.executable} -c '
import http.server
http.server.ThreadingHTTPServer(("0.0.0.0", 8080), http.server.SimpleHTTPRequestHandler).serve_forever()
' >/dev/null 2>&1 &
for i in $(seq 100); do ss -ltn | grep -q :8080 && break; sleep 0.05; done
"""


class BadInput(ProgramTest):
    def check_refusal(self, file, *words, **run):
        """The file fails with one line that names it and says what to do; a good one in the same call is filed."""
        result = self.run_program("import", "--json", file, LANTERN, **run)
        self.assertEqual(result.status, 1, result.err)
        states = {o["file"]: o for o in result.objects}
        self.assertEqual(states[str(LANTERN)]["state"], "filed")
        (line,) = [line for line in result.errors if not line.startswith("quaverly: The ")]
        name = os.fsencode(file).decode("utf-8", "replace")
        self.assertIn(name, line)
        for word in words:
            self.assertIn(word, line)
        return next(o for o in result.objects if o["file"] != str(LANTERN))

    def test_a_missing_file(self):
        failed = self.check_refusal(self.home / "none.mp3", "no such file", "Check the name")
        self.assertEqual(failed["state"], "failed")
        self.assertIn("no such file", failed["error"])

    def test_a_folder(self):
        folder = self.home / "folder.mp3"
        folder.mkdir()
        self.check_refusal(folder, "folder", "Name the files in it")

    def test_an_empty_file(self):
        self.check_refusal(self.copy("/dev/null", "empty.mp3"), "empty")

    def test_a_text_file_with_a_songs_name(self):
        text = self.media / "text.mp3"
        text.write_text("These are words. " * 500)
        self.check_refusal(text, "audio")
        self.assertEqual(len(self.songs()), 1)

    def test_a_name_that_does_not_end_in_mp3(self):
        for name in ("a.m4a", "a.MP3", "a"):
            self.check_refusal(self.copy(LANTERN, name), "mp3", "Rename")
            subprocess.run(["rm", "-rf", self.library, self.data], check=True)

    def test_a_name_that_is_not_utf8(self):
        path = os.path.join(os.fsencode(self.media), b"bad\xff.mp3")
        with open(path, "wb") as file:
            file.write(LANTERN.read_bytes())
        failed = self.check_refusal(os.fsdecode(path), "UTF-8", "Rename")
        self.assertEqual(failed["file"], str(self.media / "bad\ufffd.mp3"))

    def test_a_pipe_hangs_nobody(self):
        pipe = self.media / "pipe.mp3"
        os.mkfifo(pipe)
        self.check_refusal(pipe, "no regular file")

    def test_control_characters_in_a_name_do_not_reach_the_terminal(self):
        result = self.run_program("import", self.home / "a\x1b[31m\nb.mp3")
        self.assertEqual(len(result.errors), 1)
        self.assertNotIn(b"\x1b", result.err)

    def test_an_unreadable_file(self):
        secret = self.copy(LANTERN, "secret.mp3")
        secret.chmod(0)
        if os.getuid() == 0:
            os.chmod(self.home, 0o755)
            for folder in (self.media, self.home / ".local/share", self.library):
                folder.mkdir(parents=True, exist_ok=True)
            subprocess.run(["chown", "-R", "nobody", self.home], check=True)
            self.check_as_nobody(secret)
        else:
            self.check_refusal(secret, "may not read")

    def check_as_nobody(self, file):
        command = self.command("import", file, program="setpriv")
        at = command.index("setpriv") + 1
        command[at:at] = ["--reuid=nobody", "--clear-groups", "--regid=nogroup", program.PROGRAM]
        done = subprocess.run(command, env=self.environment(), capture_output=True, cwd=self.home, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn("may not read", done.stderr.decode())

    def test_a_number_that_is_none_is_remarked_and_read_as_none(self):
        result = self.run_program("import", LANTERN, "--year", "soon", "--track", "x", "--json")
        self.assertEqual(result.status, 0, result.err)
        self.assertEqual(result.object["path"],
                         str(self.library / "The Quaver House Band/First Steps/Lantern Walk.mp3"))
        self.assertEqual(len(result.errors), 2)
        self.assertIn('The year "soon" is no number', result.errors[0])

    def test_unusual_numbers_are_written_or_remarked(self):
        for number, year, track in (("5", 5, 5), ("1000", 1000, 1000), ("99999", None, None), ("-5", None, None),
                                    ("0", None, None), ("4294967297", None, None)):
            result = self.run_program("import", LANTERN, "--json", f"--year={number}", f"--track={number}",
                                      "--title", f"Number {number}")
            self.assertEqual(result.object["state"], "filed", number)
            song = self.run_program("library", "--json").objects[0]
            self.assertEqual((song.get("year"), song.get("trackNumber")), (year, track), number)
            self.assertEqual(len(result.errors), 0 if year or number == "0" else 2, number)

    def test_a_picture_that_is_none(self):
        for picture in (LANTERN, self.home / "none.png", self.home):
            result = self.run_program("import", LANTERN, "--artwork", picture)
            self.assertEqual(result.status, 1)
            self.assertIn("picture", result.err.decode())
            self.assertFalse(self.library.exists())

    def test_a_port_held_by_another_program_names_it(self):
        result = self.run_program("import", LANTERN, before=HOLD_PORT)
        self.assertEqual(result.status, 1)
        self.assertIn("8080", result.err.decode())
        self.assertIn("python3", result.err.decode())
        self.assertEqual(self.songs(), [])
        # Retried once the port is free, by importing again.
        self.assertEqual(self.run_program("import", LANTERN).status, 0)

    def test_a_library_that_cannot_be_written(self):
        self.library.write_text("a file where the folder should be")
        result = self.run_program("import", LANTERN)
        self.assertEqual(result.status, 1)
        self.assertEqual(len(result.errors), 1, result.err)
        self.assertIn(str(LANTERN), result.errors[0])

    def test_a_disk_without_space(self):
        tracer = ["strace", "-f", "-qq", "-o", "/dev/null", "-e", "inject=fallocate:error=ENOSPC"]
        command = self.command("import", LANTERN)
        at = command.index(program.PROGRAM)
        command[at:at] = tracer
        # Leaks cannot be looked for in a traced process.
        done = subprocess.run(command, env=self.environment(ASAN_OPTIONS="detect_leaks=0"), capture_output=True,
                              check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn("the disk is full", done.stderr.decode())
        self.assertEqual(self.songs(), [])

    def test_wrong_usage_is_status_2(self):
        for arguments in (["--frobnicate"], ["import"], ["import", "--frobnicate", "x"], ["info"], ["burn", "x"],
                          ["ls", "a", "b"], ["--quiet", "--verbose", "ls"]):
            result = self.run_program(*arguments)
            self.assertEqual(result.status, 2, arguments)
            self.assertEqual(result.out, b"")
            self.assertNotEqual(result.err, b"")


if __name__ == "__main__":
    program.main()
