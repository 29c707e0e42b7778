"""What `quaverly serve` promises whoever starts it: an address, one instance, a clean end, panels that are true."""
import pathlib
import signal
import socket
import subprocess

import program
from program import LANTERN, ROOFS
from serving import ADDRESS, Serving, ServingTest

LANTERN_PATH = "The Quaver House Band/First Steps/01 Lantern Walk.mp3"


class Serve(ServingTest):
    def test_one_line_with_the_address_and_a_clean_end_by_either_signal(self):
        for how in (signal.SIGTERM, signal.SIGINT):
            serving = self.serve()
            self.assertRegex(serving.line, ADDRESS)
            self.assertEqual(serving.port, 8181)
            self.assertEqual(serving.stop(how), (0, b"", ""))
            self.assertFalse((self.data / "serving.socket").exists())

    def test_without_a_command_it_serves(self):
        serving = Serving(self, "--no-browser", "--page-port", "8222")
        self.assertEqual(serving.port, 8222)
        self.assertEqual(serving.stop()[0], 0)

    def test_json_says_the_address_in_an_object(self):
        serving = self.serve("--json")
        self.assertRegex(serving.line, r'^\{"address":"http://127\.0\.0\.1:8181/\?token=[0-9a-f]{32}"\}$')
        self.assertEqual(serving.stop()[0], 0)

    def test_the_address_lets_in_and_its_secrets_are_new_each_time(self):
        first = self.serve().enter()
        head, _ = first.ask("/")
        self.assertNotIn(" 403 ", head)
        self.assertIn(" 403 ", first.ask("/", Cookie="none")[0])
        first.stop()
        second = self.serve()
        second.cookie = first.cookie
        self.assertIn(" 403 ", second.ask("/")[0])
        self.assertIn(" 403 ", second.ask(f"/?token={first.token}")[0])
        second.enter()
        self.assertNotIn(second.token, second.cookie)
        self.assertNotIn(" 403 ", second.ask("/")[0])

    def test_a_second_one_says_where_the_first_is(self):
        first = self.serve()
        for arguments in (["serve"], [], ["serve", "--page-port", "8999"]):
            second = self.run_program(*arguments)
            self.assertEqual((second.status, second.out), (1, b""))
            self.assertEqual(len(second.errors), 1)
            self.assertIn(first.line, second.errors[0])
            self.assertIn(str(first.process.pid), second.errors[0])
        self.assertEqual(first.stop()[0], 0)

    def test_one_that_was_killed_leaves_nothing_in_the_way(self):
        first = self.serve()
        first.process.kill()
        first.process.wait()
        self.assertEqual(self.serve().stop()[0], 0)

    def test_one_that_hangs_is_said_to_hang(self):
        first = self.serve()
        first.process.send_signal(signal.SIGSTOP)
        for arguments in (["serve"], ["import", LANTERN]):
            result = self.run_program(*arguments)
            self.assertEqual(result.status, 1)
            self.assertIn("does not answer", result.errors[0])
        first.process.send_signal(signal.SIGCONT)
        self.assertEqual(first.stop()[0], 0)

    def test_two_data_folders_have_a_page_each(self):
        first, second = self.serve(), self.serve("--data", self.home / "other")
        self.assertEqual((first.port, second.port), (8181, 8182))
        self.assertEqual((first.stop()[0], second.stop()[0]), (0, 0))

    def test_a_port_that_was_asked_for_and_is_taken_is_said_to_be(self):
        with socket.create_server(("127.0.0.1", 8300)):
            result = self.run_program("serve", "--no-browser", "--page-port", "8300")
        self.assertEqual((result.status, result.out), (1, b""))
        self.assertIn("8300", result.errors[0])
        self.assertIn("--page-port", result.errors[0])

    def test_wrong_usage(self):
        for arguments in (["serve", "--page-port", "0"], ["serve", "--page-port", "65536"], ["--page-port", "x"],
                          ["serve", "x"], ["import", "--no-browser", LANTERN], ["ls", "--page-port", "8181"]):
            result = self.run_program(*arguments)
            self.assertEqual((result.status, result.out), (2, b""), arguments)

    def test_the_other_commands_work_meanwhile(self):
        self.serve()
        self.assertEqual(self.run_program("import", LANTERN).status, 0)
        self.assertEqual(self.run_program("library", "--json").object["title"], "Lantern Walk")
        self.assertEqual(self.run_program("downloads", "--json").object["state"], "filed")
        self.assertEqual(self.run_program("info", "--json", LANTERN).object["title"], "Lantern Walk")
        self.assertEqual(self.run_program("ls", "--json").object["openedFolder"], "/var/mobile/Media")

    def test_a_long_data_folder_is_no_hindrance(self):
        folder = self.home / ("d" * 200) / ("e" * 200)
        serving = self.serve("--data", folder)
        self.assertRegex(serving.line, ADDRESS)
        self.assertEqual(self.run_program("import", "--data", folder, LANTERN).status, 0)
        self.assertEqual(serving.stop()[0], 0)


class Browser(ServingTest):
    def browser(self):
        """A browser that notes how it was called and what it saw."""
        script = self.home / "browser"
        script.write_text(f'#!/bin/sh\necho "$@" > {self.home}/seen.part\nstat -c %a "$1" >> {self.home}/seen.part\n'
                          f'cat "$1" >> {self.home}/seen.part\nmv {self.home}/seen.part {self.home}/seen\n')
        script.chmod(0o755)
        return str(script)

    def test_it_is_opened_by_way_of_a_file_so_that_no_process_shows_the_token(self):
        serving = Serving(self, "serve", DISPLAY=":0", BROWSER=self.browser())
        seen = self.home / "seen"
        self.await_that(seen.exists)
        arguments, mode, page = seen.read_text().split("\n", 2)
        self.assertEqual(mode, "600")
        self.assertNotIn(serving.token, arguments)
        self.assertIn(f'location.replace("{serving.line}")', page)
        self.assertEqual(serving.stop(), (0, b"", ""))
        self.assertFalse(pathlib.Path(arguments).exists())

    def test_none_is_opened_without_a_desktop_or_when_asked_not_to(self):
        for arguments, desktop in ((["serve"], {}), (["serve", "--no-browser"], {"DISPLAY": ":0"})):
            serving = Serving(self, *arguments, BROWSER=self.browser(), **desktop)
            self.assertEqual(serving.stop()[0], 0)
            self.assertFalse((self.home / "seen").exists())
            self.assertFalse((self.data / "open.html").exists())


class PanelData(ServingTest):
    def test_the_library_and_the_downloads_are_told_as_they_are_and_as_they_change(self):
        page = self.serve().enter().page()
        self.assertEqual(page.receive(), {"type": "downloads", "whole": True, "notice": "", "items": []})
        self.assertEqual(page.receive(), {"type": "library", "whole": True, "more": False, "items": []})
        self.assertEqual(self.run_program("import", LANTERN).status, 0)
        download = page.await_item("downloads", lambda item: item["state"] == "filed")
        self.assertEqual((download["file"], download["title"], download["canRetry"]),
                         ("lantern.mp3", "Lantern Walk", False))
        self.assertEqual(download["bytes"], LANTERN.stat().st_size)
        song = page.await_item("library", lambda item: True)
        self.assertEqual(song, {"id": 1, "title": "Lantern Walk", "artist": "The Quaver House Band",
                                "album": "First Steps", "track": 1, "year": 2026, "path": LANTERN_PATH,
                                "hasCover": True})

    def test_a_failed_download_says_why_and_can_be_retried(self):
        serving = self.serve().enter()
        page = serving.page()
        song = self.copy(program.SAMPLES / "make-samples", "text.mp3")
        self.assertEqual(self.run_program("import", song).status, 1)
        failed = page.await_item("downloads", lambda item: item["state"] == "failed")
        self.assertTrue(failed["canRetry"])
        self.assertIn("audio", failed["reason"])
        song.write_bytes(LANTERN.read_bytes())
        page.send({"type": "retry", "id": failed["id"]})
        self.assertEqual(page.await_item("downloads", lambda item: item["state"] == "filed")["id"], failed["id"])
        page.send({"type": "retry", "id": failed["id"]})
        problem = page.receive()
        while problem["type"] != "problem":
            problem = page.receive()
        self.assertIn("failed", problem["text"])

    def test_covers_and_audio_are_served_to_the_page_alone(self):
        serving = self.serve().enter()
        self.run_program("import", LANTERN)
        head, cover = serving.ask("/library/cover/1")
        self.assertIn("Content-Type: image/jpeg", head)
        self.assertEqual(cover[:3], b"\xff\xd8\xff")
        tag = next(line for line in head.splitlines() if line.startswith("ETag")).split(": ")[1]
        self.assertIn(" 304 ", serving.ask("/library/cover/1", If_None_Match=tag)[0])
        filed = (self.library / LANTERN_PATH).read_bytes()
        head, audio = serving.ask("/library/audio/1")
        self.assertIn("Content-Type: audio/mpeg", head)
        self.assertEqual(audio, filed)
        head, part = serving.ask("/library/audio/1", Range="bytes=1000-1999")
        self.assertIn(f"Content-Range: bytes 1000-1999/{len(filed)}", head)
        self.assertEqual(part, filed[1000:2000])
        for path in ("/library/audio/2", "/library/cover/-1", "/library/audio/1x", "/library/audio/", "/library/audio/../1"):
            self.assertIn(" 404 ", serving.ask(path)[0], path)
        serving.cookie = "none"
        self.assertIn(" 403 ", serving.ask("/library/audio/1")[0])

    def test_a_large_library_comes_in_parts(self):
        self.run_program("library")
        rows = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 450) INSERT INTO songs " \
               "SELECT i, i, '/x/' || i, 'Song ' || i, NULL, NULL, 0, 0, '', '', 1, 1 FROM n"
        subprocess.run(["/usr/bin/python3", "-c", f"import sqlite3; c = sqlite3.connect(r'{self.data}/catalogue.sqlite'); "
                        f"c.execute(\"\"\"{rows}\"\"\"); c.commit()"], check=True)
        page = self.serve().enter().page()
        page.receive()
        ids, message = [], page.receive()
        while True:
            ids += [item["id"] for item in message["items"]]
            if not message["more"]:
                break
            page.send({"type": "more-library", "before": ids[-1]})
            message = page.receive()
        self.assertEqual(ids, list(range(450, 0, -1)))


class Ending(ServingTest):
    def test_what_is_under_way_at_the_end_is_whole_or_resumes_at_the_next_start(self):
        files = [self.copy(LANTERN, f"{i:03}.mp3") for i in range(200)]
        serving = self.serve()
        importing = self.begin("import", "--json", "--title", "T", *files, ROOFS)
        importing.stdout.readline()
        self.assertEqual(serving.stop()[0], 0)
        _, err = importing.communicate(timeout=30)
        self.assertEqual(importing.returncode, 1)
        self.assertIn("Not done", err.decode())
        self.assertEqual([p for p in self.library.rglob("*.part")], [])
        again = self.serve()
        states = lambda: [d["state"] for d in self.run_program("downloads", "--json").objects]
        self.await_that(lambda: set(states()) <= {"filed", "duplicate"})
        self.assertEqual(again.stop()[0], 0)


if __name__ == "__main__":
    program.enter_own_network()
    program.main()
