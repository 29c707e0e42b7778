"""An import while another instance serves: the same lines, objects and status as if it had done it itself."""
import fcntl
import json
import os
import signal
import socket
import subprocess

import mutagen.id3
import program
from program import LANTERN, ROOFS
from serving import ServingTest


class HandedOver(ServingTest):
    def both(self, *arguments, before=()):
        """The same import twice, by itself and while another one serves, each in a home of its own."""
        results = []
        for serves in (False, True):
            self.doCleanups()
            self.setUp()
            self.copy(program.SAMPLES / "make-samples", "text.mp3")
            if before:
                self.run_program("import", *before)
            serving = self.serve() if serves else None
            result = self.run_program("import", *[str(a).replace("HOME", str(self.home)) for a in arguments])
            if serving:
                self.assertEqual(serving.stop(), (0, b"", ""))
            plain = lambda data: sorted(data.decode().replace(str(self.home), "HOME").splitlines())
            results.append((result.status, plain(result.out), plain(result.err), self.songs()))
        return results

    def test_it_says_and_does_the_same(self):
        for arguments, before in (
                ([LANTERN, ROOFS], ()),
                (["--json", LANTERN, ROOFS], ()),
                (["--json", LANTERN], [LANTERN]),
                ([LANTERN, ROOFS], [ROOFS]),
                (["--json", "--title", "Neu", "--track", "x", "--year", "1999", LANTERN], ()),
                (["--json", LANTERN, "/nowhere.mp3", "HOME/Downloads/text.mp3"], ()),
                (["HOME/Downloads/text.mp3", "/tmp"], ()),
                (["--quiet", LANTERN], ()),
                (["--artwork", LANTERN, LANTERN], ()),
                (["--dry-run", "--json", LANTERN], ())):
            alone, handed = self.both(*arguments, before=before)
            self.assertEqual(alone, handed, arguments)

    def test_files_may_be_named_from_where_one_stands(self):
        self.serve()
        song = self.copy(LANTERN, "sub/x.mp3")
        result = self.run_program("import", "--json", "x.mp3", cwd=song.parent)
        self.assertEqual((result.object["file"], result.object["state"]), ("x.mp3", "filed"))

    def test_a_picture_given_becomes_the_cover(self):
        picture = self.home / "p.png"
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "color=red:s=64x64", "-frames:v", "1", picture],
                       check=True)
        serving = self.serve().enter()
        self.assertEqual(self.run_program("import", LANTERN, "--artwork", picture).status, 0)
        self.assertNotEqual(serving.ask("/library/cover/1")[1], b"")
        pictures = [mutagen.id3.ID3(path).getall("APIC")[0].data for path in (LANTERN, self.library / self.songs()[0])]
        self.assertNotEqual(*pictures)

    def test_another_library_is_refused(self):
        self.serve()
        result = self.run_program("import", "--library", self.home / "Other", LANTERN)
        self.assertEqual((result.status, result.out), (1, b""))
        self.assertIn(str(self.library), result.errors[0])
        self.assertFalse((self.home / "Other").exists())

    def test_two_imports_at_once_are_both_done(self):
        self.serve()
        first, second = self.begin("import", "--json", LANTERN), self.begin("import", "--json", ROOFS)
        states = [json.loads(p.communicate(timeout=30)[0])["state"] for p in (first, second)]
        self.assertEqual(states, ["filed", "filed"])

    def take_turn(self):
        """The turn to file, as another import has it, until the result is closed; None while somebody has it."""
        self.data.mkdir(parents=True, mode=0o700, exist_ok=True)
        turn = open(self.data / "lock", "w", encoding="utf-8")  # pylint: disable=consider-using-with
        self.addCleanup(turn.close)
        try:
            fcntl.flock(turn, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            turn.close()
            return None
        return turn

    def turn_is_taken(self):
        turn = self.take_turn()
        if turn:
            turn.close()
        return turn is None

    def begin_to_wait(self):
        """An import that waits because somebody else has the turn."""
        importing = self.begin("import", "--json", LANTERN)
        self.assertIn(b"Another import is running", importing.stderr.readline())
        return importing

    def test_an_import_that_waits_is_done_by_an_instance_that_starts_and_gets_the_turn_first(self):
        turn = self.take_turn()
        importing = self.begin_to_wait()
        importing.send_signal(signal.SIGSTOP)
        turn.close()
        serving = self.serve()
        self.await_that(self.turn_is_taken)
        importing.send_signal(signal.SIGCONT)
        out, _ = importing.communicate(timeout=30)
        self.assertEqual((importing.returncode, json.loads(out)["state"]), (0, "filed"))
        self.assertEqual(serving.stop(), (0, b"", ""))

    def test_an_import_that_waits_goes_on_when_the_turn_is_free(self):
        turn = self.take_turn()
        importing = self.begin_to_wait()
        turn.close()
        out, _ = importing.communicate(timeout=30)
        self.assertEqual((importing.returncode, json.loads(out)["state"]), (0, "filed"))

    def test_an_import_that_waits_can_be_interrupted(self):
        self.take_turn()
        importing = self.begin_to_wait()
        importing.send_signal(signal.SIGINT)
        out, err = importing.communicate(timeout=30)
        self.assertEqual((importing.returncode, out), (1, b""))
        self.assertIn(b"Import it again", err)
        self.assertEqual(self.run_program("downloads", "--json").objects, [])

    def test_an_import_and_an_instance_that_start_at_once_are_both_well(self):
        for number in range(6):
            song = self.copy(LANTERN, f"{number}.mp3")
            importing = self.begin("import", "--json", song)
            serving = self.serve()
            out, err = importing.communicate(timeout=30)
            self.assertEqual(importing.returncode, 0, err)
            self.assertIn(json.loads(out)["state"], ("filed", "duplicate"))
            self.assertEqual(serving.stop(), (0, b"", ""))

    def test_of_two_instances_that_start_at_once_one_serves_and_the_other_says_where(self):
        for _ in range(3):
            both = [self.begin("serve", "--no-browser") for _ in range(2)]
            self.await_that(lambda: any(each.poll() is not None for each in both))
            other = next(each for each in both if each.poll() is not None)
            serving = both[1 - both.index(other)]
            self.assertIn(serving.stdout.readline().strip(), other.communicate()[1])
            serving.send_signal(signal.SIGTERM)
            self.assertEqual(serving.wait(timeout=30), 0)

    def test_control_c_stops_waiting_alone(self):
        files = [self.copy(LANTERN, f"{i}.mp3") for i in range(20)]
        turn = self.take_turn()  # so that the instance has to wait before it begins
        self.serve()
        process = self.begin("import", "--json", *files)
        states = lambda: [d["state"] for d in self.run_program("downloads", "--json").objects]
        self.await_that(lambda: states() == ["queued"] * len(files))
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        self.assertEqual((process.returncode, out), (1, b""))
        left = [line for line in err.decode().splitlines() if "goes on with it" in line]
        self.assertEqual(len(left), len(files))
        turn.close()
        self.await_that(lambda: len(states()) == len(files) and set(states()) <= {"filed", "duplicate"})

    def test_an_instance_that_is_killed_meanwhile_fails_the_files_and_loses_nothing(self):
        files = [self.copy(LANTERN, f"{i:03}.mp3") for i in range(300)]
        serving = self.serve()
        process = self.begin("import", "--json", *files)
        first = process.stdout.readline()
        serving.process.kill()
        out, err = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 1)
        ended = [json.loads(line) for line in (first + out).splitlines()]
        failed = [e for e in ended if e["state"] == "failed"]
        self.assertGreater(len(failed), 0)
        for each in failed:
            self.assertIn("has ended", each["error"])
            self.assertIn("next import", each["error"])
        self.assertEqual(len(ended) + err.decode().count("Import it again"), len(files))
        after = self.run_program("import", "--json", ROOFS)
        self.assertEqual(after.status, 0, after.err)
        self.assertEqual(len(after.objects), len(failed) + 1)

    def test_nobody_else_is_listened_to(self):
        serving = self.serve()
        door = str(self.data / "serving.socket")
        self.assertEqual(os.stat(self.data).st_mode & 0o777, 0o700)
        for words in (b"GET / HTTP/1.1\r\n\r\n", b"{}\n", b'{"take":1}\n', b"[]\n", b"x" * 100_000, b'{"ask":"import"}\n{"take":"x"}\n',
                      b'{"ask":"import","library":"/x"}\n{"take":1}\n', b"\xff\n"):
            with socket.socket(socket.AF_UNIX) as client:
                client.settimeout(10)
                client.connect(door)
                try:
                    client.sendall(words)
                    while client.recv(65536):
                        pass
                except (BrokenPipeError, ConnectionResetError):
                    pass
        self.assertEqual(self.run_program("import", LANTERN).status, 0)
        self.assertEqual(serving.stop()[0], 0)


if __name__ == "__main__":
    program.enter_own_network()
    program.main()
