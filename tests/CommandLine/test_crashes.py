"""Kills the program, and fails its system calls, at each step that touches the disk: the whole song or nothing."""
import os
import pathlib
import subprocess

import mutagen.id3
import program
from program import LANTERN, ProgramTest

AUDIO_ENDINGS = {".mp3", ".flac", ".m4a", ".ogg", ".opus", ".wav"}
# What changes a file or a folder: each is a step that the machine may not survive.
STEPS = "openat,write,pwrite64,writev,fallocate,ftruncate,fsync,fdatasync,rename,renameat2,linkat,unlink,unlinkat,mkdir"
LANTERN_PATH = "The Quaver House Band/First Steps/01 Lantern Walk.mp3"


class Crashes(ProgramTest):
    def traced(self, injection, *arguments):
        tracer = ["strace", "-f", "-qq", "-o", "/dev/null", "-e", f"trace={STEPS}", "-e", f"inject={injection}"]
        command = self.command(*arguments)
        at = command.index(program.PROGRAM)
        command[at:at] = tracer
        return subprocess.run(command, env=self.environment(), capture_output=True, timeout=60, check=False)

    def count(self, call):
        """How often a whole import makes this call."""
        self.clean()
        log = self.home / "calls"
        command = self.command("import", LANTERN)
        at = command.index(program.PROGRAM)
        command[at:at] = ["strace", "-f", "-qq", "-o", str(log), "-e", f"trace={call}"]
        subprocess.run(command, env=self.environment(), capture_output=True, timeout=60, check=True)
        self.clean()
        return sum(f" {call}(" in line for line in log.read_text(errors="replace").splitlines())

    def clean(self):
        subprocess.run(["rm", "-rf", self.library, self.data], check=True)

    def songs_a_player_would_read(self):
        found = []
        for folder, _, files in os.walk(self.library):
            found += [pathlib.Path(folder, f) for f in files if pathlib.Path(f).suffix in AUDIO_ENDINGS]
        return found

    def check_whole_or_nothing(self, context):
        songs = self.songs_a_player_would_read()
        for song in songs:
            self.assertEqual(song, self.library / LANTERN_PATH, context)
            self.assertEqual(mutagen.id3.ID3(song)["TIT2"].text, ["Lantern Walk"], context)
            tail = LANTERN.read_bytes()[mutagen.id3.ID3(LANTERN).size:]
            self.assertEqual(song.read_bytes()[mutagen.id3.ID3(song).size:], tail, context)

    def check_next_start(self, context):
        """The next import resumes or explains; afterwards the song is there once and the catalogue agrees."""
        result = self.run_program("import", "--json", LANTERN)
        self.assertEqual(result.status, 0, (context, result.err))
        self.assertEqual(self.songs_a_player_would_read(), [self.library / LANTERN_PATH], context)
        self.check_whole_or_nothing(context)
        songs = self.run_program("library", "--json").objects
        self.assertEqual([s["path"] for s in songs], [str(self.library / LANTERN_PATH)], context)
        leftovers = [p for p in self.library.rglob("*") if p.is_file() and p.suffix not in AUDIO_ENDINGS]
        self.assertEqual(leftovers, [], context)

    def each_step(self, calls, injection):
        for call in calls:
            steps = self.count(call)
            self.assertGreater(steps, 0, call)
            for step in range(1, steps + 1):
                self.clean()
                done = self.traced(f"{call}:{injection}:when={step}", "import", LANTERN)
                context = f"{call} {step} of {steps}: {done.stderr.decode(errors='replace')[-500:]}"
                self.check_whole_or_nothing(context)
                self.check_next_start(context)

    def test_killed_at_any_step(self):
        self.each_step(["pwrite64", "write", "fallocate", "fdatasync", "renameat2", "unlink", "mkdir"], "signal=KILL")

    def test_a_disk_that_is_full_at_any_step(self):
        self.each_step(["fallocate", "mkdir"], "error=ENOSPC")

    def test_a_disk_that_fails_to_flush_at_any_step(self):
        self.each_step(["fdatasync"], "error=EIO")

    def test_a_file_system_that_cannot_rename_without_replacing(self):
        for error in ("EINVAL", "ENOSYS"):
            self.clean()
            done = self.traced(f"renameat2:error={error}", "import", LANTERN)
            self.assertEqual(done.returncode, 0, done.stderr)
            self.check_next_start(error)


if __name__ == "__main__":
    program.main()
