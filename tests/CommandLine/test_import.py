import hashlib
import json
import os
import shutil
import signal
import subprocess
import tempfile

import program
from program import LANTERN, ROOFS, ProgramTest

LANTERN_PATH = "The Quaver House Band/First Steps/01 Lantern Walk.mp3"
ROOFS_PATH = "Ensemble Märzwind/Café im Morgenlicht/07 Über den Dächern.mp3"


class Import(ProgramTest):
    def test_files_songs_from_anywhere_and_says_where_they_are(self):
        before = {path: hashlib.sha256(path.read_bytes()).hexdigest() for path in (LANTERN, ROOFS)}
        result = self.run_program("import", LANTERN, ROOFS)
        self.assertEqual(result.status, 0, result.err)
        self.assertEqual(self.songs(), sorted([LANTERN_PATH, ROOFS_PATH]))
        self.assertIn(str(self.library / LANTERN_PATH), result.out.decode())
        self.assertIn(f"2 songs filed in {self.library}.", result.out.decode())
        for path, digest in before.items():
            self.assertEqual(hashlib.sha256(path.read_bytes()).hexdigest(), digest)

    def test_json_is_an_object_a_line_and_nothing_else(self):
        result = self.run_program("import", "--json", LANTERN, self.home / "none.mp3")
        self.assertEqual(result.status, 1)
        filed, failed = result.objects if result.objects[0]["state"] == "filed" else result.objects[::-1]
        self.assertEqual(filed, {"file": str(LANTERN), "state": "filed", "path": str(self.library / LANTERN_PATH),
                                 "bytes": LANTERN.stat().st_size})
        self.assertEqual(failed["state"], "failed")
        self.assertIn("no such file", failed["error"])

    def test_options_replace_what_was_read(self):
        result = self.run_program("import", LANTERN, "--title", "Nacht", "--artist", "Wer/Was", "--album", "",
                                  "--year", "1999", "--track", "12", "--json")
        self.assertEqual(result.status, 0, result.err)
        self.assertEqual(result.object["path"], str(self.library / "Wer_Was/Unknown Album/12 Nacht.mp3"))

    def test_a_song_that_is_there_already_is_reported_and_not_filed_again(self):
        self.run_program("import", LANTERN)
        again = self.run_program("import", LANTERN, "--json")
        self.assertEqual(again.status, 0)
        self.assertEqual(again.object["state"], "duplicate")
        self.assertEqual(again.object["path"], str(self.library / LANTERN_PATH))
        self.assertEqual(self.songs(), [LANTERN_PATH])

    def test_a_song_that_only_the_disk_knows_is_there_already_all_the_same(self):
        self.run_program("import", LANTERN)
        shutil.rmtree(self.data)
        again = self.run_program("import", LANTERN, "--json").object
        self.assertEqual((again["state"], again["path"]), ("duplicate", str(self.library / LANTERN_PATH)))
        other = self.run_program("import", LANTERN, "--year", "1999", "--json").object
        self.assertEqual((other["state"], self.songs()),
                         ("filed", [LANTERN_PATH.replace(".mp3", " (2).mp3"), LANTERN_PATH]))

    def test_other_audio_under_the_same_name_gets_a_number(self):
        names = ["--title", "T", "--artist", "A", "--album", "L", "--track", "1"]
        self.run_program("import", LANTERN, *names)
        result = self.run_program("import", ROOFS, *names)
        self.assertEqual(result.status, 0, result.err)
        self.assertEqual(self.songs(), ["A/L/01 T (2).mp3", "A/L/01 T.mp3"])

    def test_folders_may_be_named_from_where_one_stands(self):
        folders = ["--library", "lib", "--data", "./dat/"]
        self.assertEqual(self.run_program("import", LANTERN, *folders).status, 0)
        song = self.run_program("library", "--json", *folders).object
        self.assertEqual(song["path"], str(self.home / "lib" / LANTERN_PATH))
        self.assertTrue((self.home / "dat/catalogue.sqlite").exists())

    def test_two_folders_files_of_one_name_are_two_songs(self):
        first, second = self.copy(LANTERN, "a/01.mp3"), self.copy(ROOFS, "b/01.mp3")
        elsewhere = self.home / "elsewhere"
        shutil.copytree(self.media, elsewhere)
        result = self.run_program("import", elsewhere / "a/01.mp3", elsewhere / "b/01.mp3")
        self.assertEqual(result.status, 0, result.err)
        self.assertEqual(self.songs(), sorted([LANTERN_PATH, ROOFS_PATH]))
        self.assertTrue(first.exists() and second.exists())

    def test_songs_with_different_covers_keep_their_own(self):
        self.run_program("import", LANTERN, ROOFS)
        covers = [self.cover(self.library / path) for path in (LANTERN_PATH, ROOFS_PATH)]
        self.assertEqual(covers, [self.cover(LANTERN), self.cover(ROOFS)])
        self.assertNotEqual(*covers)

    def test_a_picture_given_becomes_the_cover(self):
        picture = self.home / "p.png"
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "color=red:s=64x64", "-frames:v", "1", picture],
                       check=True)
        result = self.run_program("import", LANTERN, "--artwork", picture)
        self.assertEqual(result.status, 0, result.err)
        cover = self.cover(self.library / LANTERN_PATH)
        self.assertEqual(cover[:3], b"\xff\xd8\xff")
        self.assertNotEqual(cover, self.cover(LANTERN))

    def cover(self, path):
        import mutagen.id3
        return mutagen.id3.ID3(path).getall("APIC")[0].data

    def test_a_dry_run_prints_the_plan_that_the_import_executes(self):
        edits = ["--title", "Neu", "--year", "2001"]
        planned = self.run_program("import", "--dry-run", "--json", LANTERN, ROOFS, *edits).objects
        self.assertFalse(self.library.exists())
        filed = self.run_program("import", "--json", LANTERN, ROOFS, *edits).objects
        self.assertEqual([p["path"] for p in planned], [f["path"] for f in filed])
        self.assertEqual([p["state"] for p in planned], ["planned", "planned"])
        self.assertEqual(planned[0]["before"]["title"], "Lantern Walk")
        self.assertEqual(planned[0]["after"], {"title": "Neu", "artist": "The Quaver House Band",
                                               "album": "First Steps", "trackNumber": 1, "year": 2001})
        again = self.run_program("import", "--dry-run", "--json", LANTERN, *edits).object
        self.assertEqual((again["state"], again["path"]), ("duplicate", filed[0]["path"]))

    def test_quiet_says_nothing_when_all_is_well(self):
        result = self.run_program("import", "--quiet", LANTERN)
        self.assertEqual((result.status, result.out, result.err), (0, b"", b""))

    def test_library_and_downloads_list_what_became_of_it(self):
        self.run_program("import", LANTERN, ROOFS)
        self.run_program("import", LANTERN, self.copy(program.SAMPLES / "make-samples", "text.mp3"))
        songs = self.run_program("library", "--json").objects
        self.assertEqual({s["path"] for s in songs}, {str(self.library / p) for p in (LANTERN_PATH, ROOFS_PATH)})
        lantern = next(s for s in songs if s["title"] == "Lantern Walk")
        self.assertEqual((lantern["artist"], lantern["album"], lantern["trackNumber"], lantern["year"]),
                         ("The Quaver House Band", "First Steps", 1, 2026))
        downloads = self.run_program("downloads", "--json").objects
        self.assertEqual(sorted(d["state"] for d in downloads), ["duplicate", "failed", "filed", "filed"])
        self.assertEqual(downloads[-1]["file"], str(LANTERN))

    def test_a_library_on_another_file_system(self):
        with tempfile.TemporaryDirectory(dir="/dev/shm") as memory:
            self.assertNotEqual(os.stat(memory).st_dev, os.stat(self.home).st_dev)
            result = self.run_program("import", "--library", memory, LANTERN)
            self.assertEqual(result.status, 0, result.err)
            self.assertTrue(os.path.exists(os.path.join(memory, LANTERN_PATH)))

    def test_two_imports_at_once_take_turns(self):
        # One network for both, so that they share the port as well as the data folder.
        script = program.LOOPBACK_UP + '"$1" import "$2" & "$1" import "$3"; s=$?; wait $! && exit $s'
        both = subprocess.run([*program.OWN_NETWORK, "sh", "-c", script, "sh", program.PROGRAM, LANTERN, ROOFS],
                              env=self.environment(), capture_output=True, timeout=60, check=False)
        self.assertEqual(both.returncode, 0, both.stderr)
        self.assertEqual(self.songs(), sorted([LANTERN_PATH, ROOFS_PATH]))

    def test_an_import_waits_for_another_one_that_has_the_port(self):
        files = [self.copy(LANTERN, f"{i:03}.mp3") for i in range(60)]
        script = (program.LOOPBACK_UP + '"$1" --quiet import "$2"/*.mp3 & sleep 0.1; '
                  '"$1" --quiet --data "$3" --library "$4" import "$5"; s=$?; wait $! && exit $s')
        both = subprocess.run([*program.OWN_NETWORK, "sh", "-c", script, "sh", program.PROGRAM, self.media,
                               self.home / "data2", self.home / "library2", ROOFS],
                              env=self.environment(), capture_output=True, timeout=60, check=False)
        self.assertEqual((both.returncode, both.stderr), (0, b""))
        self.assertTrue((self.home / "library2" / ROOFS_PATH).exists())
        self.assertEqual(len(self.run_program("downloads", "--json").objects), len(files))

    def test_control_c_stops_after_the_current_step_and_says_what_was_not_done(self):
        files = [self.copy(LANTERN, f"{i:03}.mp3") for i in range(300)]
        process = subprocess.Popen(self.command("import", "--json", *files), env=self.environment(),
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, bufsize=0)
        first = process.stdout.readline()
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 1)
        ended = [json.loads(line) for line in (first + out).splitlines()]
        left = [line for line in err.decode().splitlines() if "Not done" in line]
        self.assertGreater(len(left), 0)
        self.assertEqual(len(ended) + len(left), len(files))
        # What had been handed over is taken up again by the next import, whatever that one is asked for.
        resumed = [line for line in left if "goes on with it" in line]
        after = self.run_program("import", "--json", ROOFS)
        self.assertEqual(after.status, 0, after.err)
        self.assertEqual(len(after.objects), len(resumed) + 1)


if __name__ == "__main__":
    program.main()
