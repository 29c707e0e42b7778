"""The words of the program: no table lacks a key or has one too many, and all that people read is in them."""
import errno
import os
import pathlib
import plistlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUNDLE = ROOT / "resources/QuaverlySettings.bundle"
HOST = ROOT / "resources/host"
PAGE = ROOT / "resources/page"
LANGUAGES = {"de", "es", "fr", "it", "ja", "pt-BR", "ru", "zh-Hans"}
# What the libraries say: the words of the parser's help, and the C library's reasons. The parser's complaints, which
# have the program's name in front, are tried one by one in test_languages.py.
OF_LIBRARIES = {"Usage", "OPTIONS", "SUBCOMMAND", "REQUIRED", "Subcommands", "Positionals", "Options"} | {
    os.strerror(number) for number in (errno.ENOENT, errno.ENOTDIR, errno.EACCES, errno.EROFS, errno.ENOSPC,
                                       errno.EIO, errno.EMFILE, errno.ENAMETOOLONG)}
COMPLAINT = "quaverly: "
LITERALS = re.compile(r'"(?:[^"\\\n]|\\.)*"(?:\s*"(?:[^"\\\n]|\\.)*")*')

# What stays English: a file that no person reads.
ENGLISH = {"BrowserStart.cpp"}
# What is no sentence of the program: tags' values, a file's name, and parts that are looked for.
NO_SENTENCES = {"Unknown Title", "Unknown Artist", "Unknown Album", "Quaverly Support.eml"}


def strings(path):
    """The texts of a string table by key."""
    pairs = r'/\*.*?\*/|"((?:[^"\\]|\\.)*)"\s*=\s*"((?:[^"\\]|\\.)*)"\s*;'
    found = re.findall(pairs, path.read_text(encoding="utf-8"), flags=re.S)
    return {key: text for key, text in found if key}


def places(text):
    return set(re.findall(r"\{\w+\}", text))


def literals(path):
    """The texts in a C++ source, with those that stand one after the other as one."""
    source = re.sub(r"//.*|#include.*|'\"'|'\\\\?.'", "", path.read_text(encoding="utf-8"))
    for found in LITERALS.findall(source):
        yield "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', found))


class BundleTables(unittest.TestCase):
    def test_each_language_has_the_keys_of_english_and_no_others(self):
        self.assertEqual({each.stem for each in BUNDLE.glob("*.lproj")}, LANGUAGES | {"en"})
        for name in ["Localizable.strings", "QuaverlySettings.strings"]:
            english = strings(BUNDLE / "en.lproj" / name)
            for language in LANGUAGES:
                table = strings(BUNDLE / f"{language}.lproj" / name)
                self.assertEqual(table.keys(), english.keys(), f"{language} {name}")
                self.assertFalse([key for key, text in table.items() if not text], f"{language} {name}")

    def test_every_key_that_the_bundle_names_has_its_words_and_the_other_way_round(self):
        sources = "\n".join(each.read_text() for folder in ["Controllers", "Cells", "Cores", "Other"]
                            for each in (ROOT / "src" / folder).glob("*.cpp"))
        named = set(re.findall(r'(?:StringForKey|rowNamed|switchNamed)\("([A-Z_]+)"', sources))
        self.assertEqual(named, strings(BUNDLE / "en.lproj/Localizable.strings").keys())

    def test_every_row_of_the_property_list_has_its_words_and_the_other_way_round(self):
        rows = plistlib.loads((BUNDLE / "QuaverlySettings.plist").read_bytes())["items"]
        named = {row[key] for row in rows for key in ["label", "footerText"] if key in row}
        self.assertEqual(named, strings(BUNDLE / "en.lproj/QuaverlySettings.strings").keys())


class PageTables(unittest.TestCase):
    entries = re.compile(r"^  '([\w.]+)': '(.*)',$", re.M)

    def test_each_language_has_the_pages_keys_and_their_places(self):
        english = dict(self.entries.findall((PAGE / "words.js").read_text(encoding="utf-8")))
        self.assertGreater(len(english), 30)
        self.assertEqual({each.stem for each in (PAGE / "translations").glob("*.js")}, LANGUAGES)
        for language in LANGUAGES:
            text = (PAGE / f"translations/{language}.js").read_text(encoding="utf-8")
            self.assertIn(f"language = '{language}';", text)
            table = dict(self.entries.findall(text))
            self.assertEqual(table.keys(), english.keys(), language)
            for key, words in english.items():
                self.assertEqual(places(table[key]), places(words), f"{language} {key}")


class HostTables(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.tables = {each: strings(HOST / f"{each}.lproj/Host.strings") for each in LANGUAGES}
        cls.keys = sorted(cls.tables["de"])
        cls.sources = {each: list(literals(each)) for folder in ["Host", "Platform/UIKit", "Platform/Foundation", "Externals", "Controllers", "Cells"]
                       for each in sorted((ROOT / "src" / folder).rglob("*.cpp"))}

    def test_each_language_has_the_same_keys_and_places(self):
        self.assertEqual({each.stem for each in HOST.glob("*.lproj")}, LANGUAGES)
        for language, table in self.tables.items():
            self.assertEqual(sorted(table), self.keys, language)
            for key, text in table.items():
                self.assertEqual(places(text), places(key), f"{language} {key}")
                self.assertTrue(text, f"{language} {key}")

    def test_every_key_is_said_somewhere(self):
        said = "\0".join(text for texts in self.sources.values() for text in texts)
        keys = [key for key in self.keys if key not in OF_LIBRARIES and not key.startswith(COMPLAINT)]
        pieces = [(key, piece.strip(" .,:()\"\\")) for key in keys for piece in re.split(r"\{\d\}", key)]
        words = [(key, word) for key, piece in pieces for word in re.split(r": | \(process|[,.]$", piece) if word]
        unsaid = {key for key, word in words if not self.is_said(word, said)}
        self.assertEqual(unsaid, set())

    def test_every_name_that_screen_readers_say_is_in_the_tables(self):
        named = [name for path in self.sources if "Host" not in path.parts
                 for name in re.findall(r'setAccessibilityLabel\("([^"]+)"\)', path.read_text(encoding="utf-8"))]
        self.assertGreater(len(named), 2)
        self.assertEqual([name for name in named if name not in self.keys], [])

    @staticmethod
    def is_said(piece, said):
        """A piece may be put together of two texts."""
        piece = piece.strip(" .,:()\"\\")
        if piece in said:
            return True
        cuts = [at for at, letter in enumerate(piece) if letter == " "]
        return any(piece[:at] in said and piece[at + 1:] in said for at in cuts)

    def test_every_sentence_that_is_said_is_in_the_tables(self):
        known = "\0".join(self.keys)
        missing = []
        for path, texts in self.sources.items():
            if "Host" not in path.parts or path.name in ENGLISH:
                continue
            for text in texts:
                is_sentence = re.match(r"[A-Z][a-z']+ [\w\s(]", text) or re.search(r"[a-z] [a-z]+\.$", text)
                are_known = all(part.strip(" .") in known for part in text.split(": "))
                if is_sentence and text not in NO_SENTENCES and not are_known:
                    missing.append(f"{path.name}: {text}")
        self.assertEqual(missing, [])


if __name__ == "__main__":
    unittest.main()
