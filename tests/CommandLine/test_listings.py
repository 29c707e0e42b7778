import os
import pathlib

import program
from program import LANTERN, ROOFS, ProgramTest

MEDIA = "/var/mobile/Media"


class List(ProgramTest):
    def setUp(self):
        super().setUp()
        song = self.copy(LANTERN, "song.mp3")
        os.utime(song, (1_000_000_000, 1_000_000_000))
        self.copy(LANTERN, "Loud.MP3")
        self.copy(LANTERN, "album.mp3/x")
        self.copy("/dev/null", ".hidden")

    def items(self, listing):
        return {pathlib.PurePath(i["path"]).name: i for i in listing["items"]}

    def test_the_media_folder_is_the_first(self):
        listing = self.run_program("ls", "--json").object
        self.assertEqual(listing["openedFolder"], MEDIA)
        self.assertEqual(listing["backTitle"], "/mobile")
        items = self.items(listing)
        self.assertEqual(sorted(items), sorted([".hidden", "Loud.MP3", "album.mp3", "song.mp3"]))
        self.assertEqual(items["song.mp3"], {"path": f"{MEDIA}/song.mp3", "isDirectory": False, "isAudioFile": True,
                                             "size": "174 KB", "date": "09/09/2001 1:46 AM"})
        self.assertEqual((items["Loud.MP3"]["isAudioFile"], items[".hidden"]["size"]), (False, "Zero KB"))
        self.assertEqual((items["album.mp3"]["isDirectory"], items["album.mp3"]["isAudioFile"]), (True, False))
        self.assertNotIn("size", items["album.mp3"])

    def test_a_folder_can_be_named_in_three_ways(self):
        for name in ("album.mp3", f"{MEDIA}/album.mp3", str(self.media / "album.mp3"), f"{MEDIA}/x/../album.mp3/"):
            listing = self.run_program("ls", "--json", name).object
            self.assertEqual(listing["openedFolder"], f"{MEDIA}/album.mp3", name)
            self.assertEqual(list(self.items(listing)), ["x"])
            self.assertEqual(listing["backTitle"], "/Media")

    def test_above_the_media_folder_lies_the_way_and_no_more(self):
        for folder, back, names in (("/", "", ["Library", "var"]), ("/var", "/", ["mobile"]),
                                    ("/var/mobile", "/var", ["Media"])):
            listing = self.run_program("ls", "--json", folder).object
            self.assertEqual((listing["backTitle"], sorted(self.items(listing))), (back, names))

    def test_no_quaverly_folder_appears_among_the_users_files(self):
        self.run_program("info", ROOFS)
        self.assertNotIn("Quaverly", self.items(self.run_program("ls", "--json").object))
        self.assertFalse((self.media / "Quaverly").exists())

    def test_what_cannot_be_listed_is_an_empty_listing_with_its_reason(self):
        for folder in ("none", "/etc", "song.mp3"):
            result = self.run_program("ls", "--json", folder)
            self.assertEqual(result.status, 1, folder)
            self.assertEqual(result.object["items"], [])
            self.assertEqual(len(result.errors), 1)
            self.assertIn(folder, result.errors[0])

    def test_a_name_that_is_not_utf8_leaves_the_json_valid(self):
        with open(os.path.join(os.fsencode(self.media), b"bad\xff.mp3"), "wb"):
            pass
        items = self.items(self.run_program("ls", "--json").object)
        self.assertIn("bad\ufffd.mp3", items)
        self.assertIn("bad\ufffd.mp3", self.run_program("ls").out.decode())

    def test_dates_and_sizes_are_in_the_locales_own_words(self):
        listing = self.run_program("ls", "--json", env={"LANG": "ja_JP.UTF-8", "TZ": "Asia/Tokyo"}).object
        self.assertEqual(self.items(listing)["song.mp3"]["date"], "09/09/2001 10:46 午前")


class Info(ProgramTest):
    def test_prints_the_record_without_absent_fields(self):
        record = self.run_program("info", "--json", ROOFS).object
        artwork = "file://localhost/private/var/mobile/Media/Quaverly/tmp/current_album_image_local.jpg"
        self.assertEqual(record, {"title": "Über den Dächern", "artist": "Ensemble Märzwind",
                                  "album": "Café im Morgenlicht", "genre": "Ambient", "releaseYear": "2025",
                                  "indexInCollection": "07", "artworkLow": artwork, "artworkMedium": artwork,
                                  "artworkHigh": artwork})
        self.assertIn("title: Über den Dächern", self.run_program("info", ROOFS).out.decode())

    def test_a_file_without_tags_has_an_empty_record(self):
        text = self.copy(program.SAMPLES / "make-samples", "text.mp3")
        self.assertEqual(self.run_program("info", "--json", text).object, {})

    def test_a_missing_file_is_said(self):
        result = self.run_program("info", "--json", "none.mp3")
        self.assertEqual((result.status, result.out), (1, b""))
        self.assertIn("none.mp3", result.errors[0])


class Help(ProgramTest):
    def test_it_says_what_it_can_do(self):
        result = self.run_program("--help")
        self.assertEqual(result.status, 0)
        for command in ("serve", "import", "ls", "info", "library", "downloads", "--media", "--json"):
            self.assertIn(command, result.out.decode())

    def test_the_version_is_one_line(self):
        self.assertRegex(self.run_program("--version").out.decode(), r"^quaverly \d+\.\d+\.\d+\n$")

    def test_empty_listings_say_how_to_begin(self):
        for command in ("library", "downloads"):
            self.assertIn("quaverly import", self.run_program(command).out.decode())
            self.assertEqual(self.run_program(command, "--json").out, b"")


if __name__ == "__main__":
    program.main()
