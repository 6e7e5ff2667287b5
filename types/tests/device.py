"""A simulated device of a test's own: scripts run on it, and what it holds afterwards."""

import os
import shutil
import subprocess
import tempfile

PATIENCE = 100
# What the device has at hand for whoever simulates it, and what changes by itself.
NOT_OURS = ("hw", "var", "usr")


class Device:
    """Without the system's scripts beside the host, so that what a method asks of them stays to be seen."""

    def __init__(self, programs, profile="home-phone", like=None):
        self.programs = programs
        self.scratch = tempfile.mkdtemp(prefix="types-test-")
        self.root = os.path.join(self.scratch, "device")
        if like is None:
            subprocess.run([self.program("zqsim"), "create", self.root, "--profile", profile], check=True)
        else:
            shutil.copytree(like.root, self.root, symlinks=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.scratch)

    def program(self, name):
        return os.path.join(self.programs, name)

    def run(self, *words, **options):
        return subprocess.run([self.program("zqsim"), "run", self.root, "--", *words], capture_output=True, text=True,
                              check=False, timeout=PATIENCE, **options)

    def script(self, text):
        """What the script printed; it must end well. (A scan without radio complains on standard error.)"""
        done = self.run(self.program("sorel"), "-", input=text)
        assert done.returncode == 0, f"{text}\n{done.stdout}{done.stderr}"
        return done.stdout

    def path(self, *names):
        return os.path.join(self.root, *names)

    def forget_requests(self):
        """Takes away what the system's scripts were asked for."""
        for name in os.listdir(self.path("tmp")):
            os.remove(self.path("tmp", name))

    def holds(self):
        """Each key of the key store, each setting (as "FILE KEY") and each other file by its path, with its text."""
        listed = self.run(self.program("nvram"), "list")
        assert listed.returncode == 0, listed.stderr
        found = dict(line.split("=", 1) for line in listed.stdout.splitlines())
        for folder, folders, files in os.walk(self.root):
            if folder == self.root:
                folders[:] = [name for name in folders if name not in NOT_OURS]
            for name in files:
                path = "/" + os.path.relpath(os.path.join(folder, name), self.root)
                with open(self.path(folder, name), encoding="utf-8", errors="replace") as file:
                    text = file.read()
                found.update(settings(path[1:], text) if name.endswith(".ini") else {path: text})
        return found


def settings(path, text):
    lines = [line for line in text.splitlines() if line]
    assert not lines or lines[0] == "[config]", text
    return {path: "is there"} | {f"{path} {key}": value for key, value in (line.split("=", 1) for line in lines[1:])}


def changes(before, after):
    """What is new or other, and with None what is gone."""
    names = sorted(before.keys() | after.keys())
    return {name: after.get(name) for name in names if before.get(name) != after.get(name)}
