"""The program speaks the user's language where people read, and English where programs do."""
import re
import unittest

import program
import test_words
from program import LANTERN, ROOFS, ProgramTest
from serving import Serving

LOCALES = ["de_AT", "es_MX", "fr_FR", "it_IT", "ja_JP", "pt_BR", "ru_RU", "zh_CN"]
GERMAN = {"LANG": "de_AT.UTF-8"}
WRONG_USAGES = [["--frobnicate"], ["engines", "enable", "a", "b", "c"], ["engines", "enable"], ["ls", "--media"],
                ["ls", "--media", "a", "--media", "b"], ["--page-port", "0"], ["ls", "--verbose", "--quiet"],
                ["import", "--title", b"\xff", "a.mp3"], ["ls", "--json=perhaps"]]


class Languages(ProgramTest):
    def test_a_problem_is_told_in_the_users_language(self):
        told = self.run_program("import", "nothing.mp3", env=GERMAN)
        self.assertEqual(told.errors, ["quaverly: nothing.mp3: Diese Datei gibt es nicht. Prüfen Sie den Namen."])

    def test_an_import_is_reported_in_the_users_language(self):
        one, other = self.copy(LANTERN, "a.mp3"), self.copy(ROOFS, "b.mp3")
        first = self.run_program("import", one, env=GERMAN)
        self.assertEqual(first.status, 0, first.err)
        second = self.run_program("import", one, other, env=GERMAN).out.decode()
        self.assertIn(" ist schon in der Mediathek: ", second)
        self.assertIn(f"1 Titel in {self.library} abgelegt, 1 schon vorhanden.", second)
        dry = self.run_program("import", "--dry-run", "--title", "Neu", one, env=GERMAN).out.decode()
        self.assertIn(" würde zu ", dry)
        self.assertIn('  Tags danach:  Titel "Neu", Interpret "The Quaver House Band"', dry)

    def test_json_is_the_same_in_every_language(self):
        song = self.copy(LANTERN, "a.mp3")
        for arguments in [["import", "nothing.mp3"], ["import", "--dry-run", song], ["engines"], ["ls"]]:
            english = self.run_program("--json", *arguments)
            german = self.run_program("--json", *arguments, env=GERMAN)
            self.assertEqual(german.objects, english.objects)
        self.assertIn("There is no such file", self.run_program("--json", "import", "nothing.mp3", env=GERMAN).object["error"])

    def test_what_was_stored_in_one_language_is_read_in_another(self):
        (self.media / "empty.mp3").write_bytes(b"no audio in here")
        self.run_program("import", self.media / "empty.mp3", env=GERMAN)
        english = self.run_program("downloads").out.decode()
        french = self.run_program("downloads", env={"LANG": "fr_FR.UTF-8"}).out.decode()
        self.assertIn("no audio that can be imported", english)
        self.assertIn("Le fichier ne contient pas d’audio importable.", french)

    def test_the_help_is_in_the_users_language(self):
        english = self.run_program("--help").out.decode()
        for locale in LOCALES:
            helped = self.run_program("--help", env={"LANG": locale + ".UTF-8"})
            self.assertEqual(helped.status, 0, helped.err)
            text = helped.out.decode()
            for sentence in ["Brings audio files", "Print this help", "Put audio files", "Exit status", "Options of"]:
                self.assertIn(sentence, english)
                self.assertNotIn(sentence, text, locale)

    def test_wrong_usage_is_told_in_the_users_language(self):
        english = [self.run_program(*usage) for usage in WRONG_USAGES]
        self.assertEqual({told.status for told in english}, {2})
        for key in test_words.strings(test_words.HOST / "de.lproj/Host.strings"):
            pattern = re.sub(r"\\{\d\\}", ".+", re.escape(key))
            said = any(re.fullmatch(pattern, told.errors[0]) for told in english)
            self.assertTrue(said or not key.startswith(test_words.COMPLAINT), key)
        for locale in LOCALES:
            for usage, here in zip(WRONG_USAGES, english):
                told = self.run_program(*usage, env={"LANG": locale + ".UTF-8"})
                self.assertEqual((told.status, told.out, len(told.errors)), (2, b"", 2), usage)
                for line, untranslated in zip(told.errors, here.errors):
                    self.assertNotEqual(line, untranslated, f"{locale} {usage}")
        self.assertEqual(self.run_program("import", env=GERMAN).errors, ["quaverly: FILE fehlt", "Mehr dazu mit --help."])

    def test_a_complaint_cannot_move_the_cursor(self):
        self.assertEqual(self.run_program("--a\x1b[2Jb").errors[0],
                         "quaverly: The following argument was not expected: --a?[2Jb")

    def test_listings_are_in_the_users_language(self):
        self.copy(LANTERN, "a.mp3")
        self.assertIn("  (song)", self.run_program("ls").out.decode())
        self.assertTrue(self.run_program("ls", env=GERMAN).out.decode().rstrip().endswith("  (Titel)"))
        self.run_program("import", self.media / "a.mp3")
        self.assertIn("  abgelegt  ", self.run_program("downloads", env=GERMAN).out.decode())
        self.assertIn("  filed  ", self.run_program("downloads").out.decode())

    def test_engines_are_listed_and_switched_in_the_users_language(self):
        turned = self.run_program("engines", "disable", "Feeds", env=GERMAN).out.decode()
        self.assertEqual(turned, "aus  Feeds 1.0, Ferrowin (Tolmarin)  (feeds.qvsc)\n")
        self.assertIn("ein  Direct links 1.2, ", self.run_program("engines", env=GERMAN).out.decode())
        self.assertIn("off  Feeds 1.0, ", self.run_program("engines").out.decode())

    def test_why_a_folder_cannot_be_listed_is_told_in_the_users_language(self):
        self.assertEqual(self.run_program("ls", "none", env=GERMAN).errors,
                         ["quaverly: none: „/var/mobile/Media/none“ kann nicht aufgelistet werden: Datei oder Ordner nicht "
                          "gefunden. Nennen Sie einen anderen Ordner oder ein anderes --media."])

    def test_what_nobody_foresaw_is_told_as_such_in_the_users_language(self):
        told = self.run_program("ls", env={"TMPDIR": "/nowhere", **GERMAN})
        self.assertEqual(told.status, 1)
        self.assertTrue(told.errors[0].startswith("quaverly: unerwartet: "), told.errors)

    def test_the_list_of_languages_comes_first_and_those_without_words_are_passed_over(self):
        told = self.run_program("import", "nothing.mp3", env={"LANG": "de_DE.UTF-8", "LANGUAGE": "sv:fr"})
        self.assertIn("Ce fichier n’existe pas.", told.errors[0])

    def test_languages_without_words_get_english(self):
        for environment in [{"LANG": "sv_SE.UTF-8"}, {"LANG": "C", "LANGUAGE": "de"}, {"LC_ALL": "en_GB.UTF-8", **GERMAN}]:
            told = self.run_program("import", "nothing.mp3", env=environment)
            self.assertIn("There is no such file.", told.errors[0])

    def test_the_page_gets_its_words(self):
        for locale, words in [("de_AT", "language = 'de'"), ("zh_CN", "language = 'zh-Hans'"), ("C", "language = 'en'")]:
            serving = Serving(self, "serve", "--no-browser", LANG=locale + ".UTF-8").enter()
            head, body = serving.ask("/translation.js")
            self.assertTrue(head.startswith("HTTP/1.1 200"), head)
            self.assertIn("text/javascript", head)
            self.assertIn(words, body if isinstance(body, str) else body.decode())
            self.assertTrue(serving.ask("/translation.jsx")[0].startswith("HTTP/1.1 404"))
            self.assertEqual(serving.stop()[0], 0)

    def test_who_is_not_let_in_is_told_why_in_the_users_language(self):
        serving = Serving(self, "serve", "--no-browser", **GERMAN)
        head, body = serving.ask("/")
        self.assertTrue(head.startswith("HTTP/1.1 403"), head)
        self.assertIn('<html lang="de">', body.decode())
        self.assertIn("Diese Adresse ist nicht für alle", body.decode())
        self.assertIn("<code>quaverly serve</code>", body.decode())


if __name__ == "__main__":
    program.enter_own_network()
    unittest.main()
