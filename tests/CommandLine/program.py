"""Runs quaverly as a person would, on folders of a test's own and in a network namespace of its own."""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM = os.environ["QUAVERLY"]
SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "samples"
LANTERN = SAMPLES / "lantern.mp3"
ROOFS = SAMPLES / "Über den Dächern.mp3"

# Port 8080 of a network of its own, so that tests neither wait for each other nor meet a stranger there.
OWN_NETWORK = ["unshare", "--net"] + ([] if os.getuid() == 0 else ["--map-root-user"])
LOOPBACK_UP = "ip link set lo up && "
if "QUAVERLY_NETWORK_IS_OWN" in os.environ:
    OWN_NETWORK, LOOPBACK_UP = [], ""


def enter_own_network():
    """Moves the whole test file into one network of its own, for tests that speak with the program over it."""
    if OWN_NETWORK:
        script = LOOPBACK_UP + 'exec "$@"'
        environment = {**os.environ, "QUAVERLY_NETWORK_IS_OWN": "1"}
        os.execvpe("unshare", [*OWN_NETWORK, "sh", "-c", script, "sh", sys.executable, "-B", *sys.argv], environment)


class Result:
    def __init__(self, process):
        self.status = process.returncode
        self.out = process.stdout
        self.err = process.stderr

    @property
    def objects(self):
        """Standard output as the JSON lines that it must then be, whole and valid."""
        return [json.loads(line) for line in self.out.decode("utf-8").splitlines()]

    @property
    def object(self):
        (only,) = self.objects
        return only

    @property
    def errors(self):
        return self.err.decode("utf-8").splitlines()


class ProgramTest(unittest.TestCase):
    """A home of its own: Downloads, Music and the data folder lie in it."""

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="quaverly-test-"))
        self.addCleanup(self.remove_home)
        self.media = self.home / "Downloads"
        self.library = self.home / "Music"
        self.data = self.home / ".local/share/quaverly"
        self.media.mkdir()

    def remove_home(self):
        subprocess.run(["chmod", "-R", "u+rwX", self.home], check=False)
        shutil.rmtree(self.home, ignore_errors=True)

    def environment(self, **more):
        plain = {k: v for k, v in os.environ.items() if k == "PATH" or k.endswith("SAN_OPTIONS")}
        return {**plain, "HOME": str(self.home), "LANG": "C.UTF-8", "TZ": "UTC", **more}

    def command(self, *arguments, before="", program=PROGRAM):
        """The command line in a network of its own; `before` is shell that runs first in it."""
        script = LOOPBACK_UP + before + 'exec "$@"'
        return [*OWN_NETWORK, "sh", "-c", script, "sh", program, *map(os.fsencode, arguments)]

    def run_program(self, *arguments, before="", cwd=None, timeout=60, env=None):
        process = subprocess.run(self.command(*arguments, before=before), capture_output=True, timeout=timeout,
                                 cwd=cwd or self.home, env=self.environment(**(env or {})), check=False)
        return Result(process)

    def songs(self):
        """Everything in the library that a player would look at, relative to it."""
        found = []
        for folder, folders, files in os.walk(self.library):
            folders[:] = [f for f in folders if not f.startswith(".")]
            found += [str(pathlib.Path(folder, f).relative_to(self.library)) for f in files]
        return sorted(found)

    def copy(self, source, name):
        target = self.media / name
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, target)
        return target


def main():
    unittest.main(verbosity=2)
