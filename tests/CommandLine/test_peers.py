"""Songs made by others are filed by us and read back by others: encoders and taggers in front, players behind."""
import hashlib
import json
import socket
import subprocess
import time

import mutagen
import mutagen.id3
import program
from program import LANTERN, ROOFS, ProgramTest


def run(*command, **more):
    return subprocess.run(command, check=True, capture_output=True, **more).stdout


def probe(path):
    shown = run("ffprobe", "-v", "error", "-of", "json", "-show_format", "-show_streams", path)
    return json.loads(shown)


def audio_digest(path):
    """Of the encoded audio alone, as ffmpeg's demuxer finds it."""
    return run("ffmpeg", "-v", "error", "-i", path, "-map", "0:a", "-c", "copy", "-f", "hash", "-")


class Peers(ProgramTest):
    def setUp(self):
        super().setUp()
        self.wave = self.home / "tone.wav"
        run("ffmpeg", "-v", "error", "-f", "lavfi", "-i", "sine=f=440:d=2", self.wave)
        self.cover = self.home / "cover.jpg"
        run("ffmpeg", "-v", "error", "-f", "lavfi", "-i", "mandelbrot=s=300x300", "-frames:v", "1", self.cover)

    def file_one(self, source, *options):
        result = self.run_program("import", "--json", source, *options)
        self.assertEqual(result.status, 0, result.err)
        return result.object["path"]

    def check_read_back(self, source, path, title, artist, album, track, year):
        shown = probe(path)
        tags = {**shown["streams"][0].get("tags", {}), **shown["format"].get("tags", {})}
        tags = {key.lower(): value for key, value in tags.items()}
        self.assertEqual((tags["title"], tags["artist"], tags["album"]), (title, artist, album))
        self.assertEqual(int(tags["track"].split("/")[0]), track)
        self.assertEqual(tags["date"][:4], year)
        easy = mutagen.File(path, easy=True)
        self.assertEqual((easy["title"], easy["artist"], easy["album"]), ([title], [artist], [album]))
        self.assertEqual(audio_digest(source), audio_digest(path))

    def test_a_file_of_lame(self):
        for version in ("--id3v2-only", "--id3v1-only", "--add-id3v2"):
            source = self.media / f"lame{version}.mp3"
            run("lame", "--quiet", version, "--tt", "A Tone", "--ta", "Lame" + version, "--tl", "Tones", "--tn", "3/9",
                "--ty", "2014", "--tg", "Ambient", self.wave, source)
            path = self.file_one(source)
            self.check_read_back(source, path, "A Tone", "Lame" + version, "Tones", 3, "2014")

    def test_a_file_of_ffmpeg(self):
        for version in ("3", "4"):
            source = self.media / f"ffmpeg{version}.mp3"
            run("ffmpeg", "-v", "error", "-i", self.wave, "-i", self.cover, "-map", "0", "-map", "1", "-c:v", "copy",
                "-id3v2_version", version, "-write_id3v1", "1", "-metadata", "title=Ton – ✓", "-metadata",
                f"artist=Künstler {version}", "-metadata", "album=Альбом", "-metadata", "track=7", "-metadata",
                "date=1987-06-05", "-metadata", "comment=kept", source)
            path = self.file_one(source)
            self.check_read_back(source, path, "Ton – ✓", f"Künstler {version}", "Альбом", 7, "1987")
            self.assertEqual(mutagen.id3.ID3(path).getall("APIC")[0].data, self.cover.read_bytes())

    def test_a_file_of_id3v2_keeps_what_the_import_does_not_speak_of(self):
        source = self.media / "id3v2.mp3"
        run("lame", "--quiet", self.wave, source)
        run("id3v2", "-t", "Old", "-a", "Tagger", "-A", "Box", "-T", "2/8", "-y", "1999", "-g", "17",
            "--TXXX", "mood:calm", "--TPE2", "Band", source)
        tags = mutagen.id3.ID3(source)
        tags.add(mutagen.id3.TSOT(encoding=3, text="old sort"))
        tags.save(v2_version=3)
        path = self.file_one(source, "--title", "New")
        self.check_read_back(source, path, "New", "Tagger", "Box", 2, "1999")
        tags = mutagen.id3.ID3(path)
        self.assertEqual(tags.getall("TXXX")[0].text, ["mood:calm"] if not tags.getall("TXXX")[0].desc else ["calm"])
        self.assertEqual((tags["TPE2"].text, tags["TRCK"].text), (["Band"], ["2/8"]))
        self.assertNotIn("TSOT", tags)  # the title that it sorted is gone
        self.assertEqual(tags["TCON"].genres, ["Rock"])

    def test_a_file_of_eyed3(self):
        source = self.media / "eyed3.mp3"
        run("lame", "--quiet", self.wave, source)
        run("eyeD3", "-Q", "--to-v2.4", "-t", "Eye", "-a", "Dee", "-A", "Three", "-n", "4", "-Y", "2020",
            "--add-image", f"{self.cover}:FRONT_COVER", "--add-comment", "note", source)
        path = self.file_one(source)
        self.check_read_back(source, path, "Eye", "Dee", "Three", 4, "2020")
        self.assertEqual(mutagen.id3.ID3(path).getall("COMM")[0].text, ["note"])

    def test_other_formats_under_an_mp3_name_are_filed_under_their_own_ending(self):
        for ending, codec in (("flac", "flac"), ("m4a", "aac"), ("ogg", "libvorbis"), ("opus", "libopus")):
            source, named = self.home / f"x.{ending}", self.media / f"{ending}.mp3"
            run("ffmpeg", "-v", "error", "-i", self.wave, "-c:a", codec, "-metadata", "title=T", "-metadata",
                f"artist={ending}", "-metadata", "album=L", "-metadata", "track=1", "-metadata", "date=2001", source)
            source.rename(named)
            path = self.file_one(named)
            self.assertEqual(path, str(self.library / ending / f"L/01 T.{ending}"))
            self.check_read_back(named, path, "T", ending, "L", 1, "2001")

    def test_filed_audio_is_the_sources_byte_for_byte(self):
        path = self.file_one(LANTERN, "--title", "Other")
        sizes = [mutagen.id3.ID3(p).size for p in (LANTERN, path)]
        source, filed = (open(p, "rb").read()[n:] for p, n in zip((LANTERN, path), sizes))
        self.assertEqual(hashlib.sha256(source).digest(), hashlib.sha256(filed).digest())


class Player(ProgramTest):
    """A real music player daemon on the library."""

    def start_player(self):
        folder = self.home / "mpd"
        folder.mkdir()
        self.address = str(folder / "socket")
        (folder / "conf").write_text(
            f'music_directory "{self.library}"\ndb_file "{folder}/db"\nstate_file "{folder}/state"\n'
            f'sticker_file "{folder}/sticker"\nbind_to_address "{self.address}"\nlog_file "{folder}/log"\n'
            'audio_output {\n type "null"\n name "none"\n}\n')
        player = subprocess.Popen(["mpd", "--no-daemon", folder / "conf"], stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (player.terminate(), player.wait()))
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            self.connection = socket.socket(socket.AF_UNIX)
            if self.connection.connect_ex(self.address) == 0:
                break
            self.connection.close()
            time.sleep(0.05)
        self.stream = self.connection.makefile("rb")
        self.addCleanup(self.connection.close)
        self.addCleanup(self.stream.close)
        self.assertTrue(self.stream.readline().startswith(b"OK MPD"))

    def ask(self, command):
        self.connection.sendall(command.encode() + b"\n")
        fields = {}
        while True:
            line = self.stream.readline()
            if line == b"OK\n":
                return fields
            self.assertFalse(line.startswith(b"ACK"), line)
            key, _, value = line.decode().rstrip("\n").partition(": ")
            if key == "binary":
                fields["data"] = self.stream.read(int(value))
                self.stream.readline()
            else:
                fields.setdefault(key, value)

    def picture(self, song):
        data, size = b"", 1
        while len(data) < size:
            part = self.ask(f'readpicture "{song}" {len(data)}')
            size = int(part["size"])
            data += part["data"]
        return data

    def index(self):
        self.ask("update")
        deadline = time.monotonic() + 20
        while "updating_db" in self.ask("status"):
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.05)

    def test_a_player_finds_the_songs_with_their_tags_and_covers(self):
        self.assertEqual(self.run_program("import", LANTERN, ROOFS).status, 0)
        self.start_player()
        self.index()
        self.assertEqual(self.ask("stats")["songs"], "2")
        path = "Ensemble Märzwind/Café im Morgenlicht/07 Über den Dächern.mp3"
        song = self.ask(f'find file "{path}"')
        self.assertEqual([song[k] for k in ("Title", "Artist", "Album", "Date")],
                         ["Über den Dächern", "Ensemble Märzwind", "Café im Morgenlicht", "2025"])
        self.assertEqual(int(song["Track"]), 7)
        self.assertEqual(self.picture(path), mutagen.id3.ID3(ROOFS).getall("APIC")[0].data)


if __name__ == "__main__":
    program.main()
