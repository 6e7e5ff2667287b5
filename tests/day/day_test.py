"""A device's first day: carried home, set up, dimmed through the evening, updated twice, and given away. What its screens
show, what its person does, what becomes of its files and what the update server hears are compared as one text, day.txt.

  day_test.py FOLDER-OF-PROGRAMS
"""

import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "..", "tools", "tests"))
import support  # noqa: E402

# A package's run script, which brings another release of the screens' software.
RUN = """#!/bin/sh
set -eu
{first}
echo {release} > /etc/software.ver
nvram set update.done 1
"""
# What takes its time when it is run for the first time.
SLOW_ONCE = "[ -e /media/began ] || { echo > /media/began; sleep 60; }"


class Screens:
    """The supervised device: its lines, one by one."""

    def __init__(self, device, words, folder, environment):
        self.device = device
        with open(os.path.join(folder, "errors"), "a", encoding="utf-8") as errors:
            self.process = subprocess.Popen(words, cwd=folder, env=environment, stdout=subprocess.PIPE, stderr=errors,
                                            stdin=subprocess.DEVNULL, text=True, errors="replace",
                                            start_new_session=True)
        self._lines, self._more = [], threading.Condition()
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            # The module tells of every check of its own.
            if line.startswith("Checking For "):
                continue
            with self._more:
                self._lines.append(line.rstrip("\n"))
                self._more.notify_all()
        with self._more:
            self._lines.append(None)
            self._more.notify_all()

    def next_line(self):
        """The next line, awaited; None at the end, and when none comes."""
        with self._more:
            return self._lines.pop(0) if self._more.wait_for(lambda: self._lines, support.PATIENCE) else None

    def switch_off(self):
        """The status that it ends with. May be called again."""
        if self.process.returncode is None:
            self.process.terminate()
        try:
            status = self.process.wait(support.PATIENCE)
        except subprocess.TimeoutExpired:
            status = "none"
            self.cut_power()
        return status

    def cut_power(self):
        support.cut_power(self.process, self.device)


class Day:
    """What happens, as lines of text. Whoever acts waits for what it leads to."""

    def __init__(self, programs, scratch, server):
        self.programs, self.scratch, self.server = programs, scratch, server
        self.device = os.path.join(scratch, "device")
        self.told = []
        self.touches = 0
        self.heard = 0

    def run(self, *words):
        done = support.run(os.path.join(self.programs, "zqsim"), *words, cwd=self.scratch, env=self.environment())
        if done.returncode != 0:
            raise AssertionError(f"{words}: {done.stderr}")
        return done.stdout

    def environment(self):
        environment = {**os.environ, "ZQ_CA_FILE": self.server.said["ca-file"], "ZQ_TRACE": "off",
                       "ZQ_SIM_HOST_PATHS": os.pathsep.join([self.server.folder, HERE]),
                       "PATH": self.programs + os.pathsep + os.environ["PATH"]}
        for name_of_proxy in ("http_proxy", "no_proxy", "https_proxy"):
            environment.pop(name_of_proxy, None)
        return environment

    def path(self, *names):
        return os.path.join(self.device, *names)

    def tell(self, line):
        self.told.append(line)

    def until(self, beginning):
        """What the screens show, up to the line that begins so."""
        while True:
            line = self.screens.next_line()
            if line is None:
                raise AssertionError(f"no line that begins with '{beginning}'")
            # An address is told of again when the interfaces change further: how often is a matter of the moment.
            if line != "network: has an address" or self.told[-1:] != ["    " + line]:
                self.tell("    " + line)
            if line.startswith(beginning):
                return

    def touch(self, words, then):
        self.touches += 1
        self.tell(f"touches {words}")
        support.write(self.path("touch.ini"), f"[config]\ntouched = {self.touches} {words}\n")
        self.until(then)

    def becomes(self, what, wanted, look):
        """Tells what it is, once it is what is wanted, or when it is not for too long."""
        deadline = time.monotonic() + support.PATIENCE / 2
        while (seen := look()) != wanted and time.monotonic() < deadline:
            time.sleep(0.02)
        self.tell(f"  {what} {seen}")

    def file(self, *names):
        def look():
            try:
                return support.read(self.path(*names)).replace("\0", "").strip()
            except FileNotFoundError:
                return "none"
        return look

    def address(self):
        with open(self.path("hw", "ra0", "link.ini"), encoding="utf-8") as file:
            said = file.read().partition("[address]")[2]
        return re.search(r"^ip = ?(.*)$", said, re.MULTILINE)[1]

    def zone(self):
        path = self.path("etc", "localtime")
        return os.path.relpath(os.path.realpath(path), "/usr/share/zoneinfo") if os.path.islink(path) else "none"

    def light(self, reading, level):
        self.tell(f"the light is {reading}")
        support.write(self.path("hw", "light"), f"{reading}\n")
        self.becomes("backlight", str(level), self.file("proc", "blctrl"))

    def acknowledgements(self):
        """What the server has heard since the last look."""
        path = os.path.join(self.server.folder, "acknowledgements.log")
        lines = support.read(path).splitlines() if os.path.exists(path) else []
        for line in lines[self.heard:]:
            words = dict(word.split("=", 1) for word in line.split() if "=" in word)
            self.tell(f"  server: device {words['device']} has update {words['update']}")
        self.heard = len(lines)

    def offer(self, number, release, forced=False, first=""):
        """Packs a release, and offers it in place of what was offered before."""
        folder = os.path.join(self.scratch, f"release-{release}")
        os.mkdir(folder)
        support.write(os.path.join(folder, "run"), RUN.format(release=release, first=first))
        done = support.run(os.path.join(support.TOOLS, "make-update"), "-o", os.path.join(self.server.folder, "packages"),
                           *(["--encrypt"] if forced else []), folder)
        if done.returncode != 0:
            raise AssertionError(done.stderr)
        self.server.settings(f"[{os.path.basename(done.stdout.strip())}]\nid = {number}\ncomment = Release {release}\n"
                             f"forced = {'yes' if forced else 'no'}\n")
        self.tell(f"server: offers update {number}, release {release}{', forced' if forced else ''}")

    def make_device(self):
        """As it leaves the factory, in a place without networks."""
        self.run("create", self.device)
        for key, value in (("sys.bldrver", "1"), ("sys.numparts", "4")):
            self.run("run", self.device, "--", "nvram", "set", key, value)
        support.write(self.path("zqapplog.ini"), f"[config]\nhost = localhost\nsslport = {self.server.https}\n")
        os.rename(self.path("hw", "ra0", "cells.ini"), os.path.join(self.scratch, "home"))
        support.write(self.path("hw", "ra0", "cells.ini"), "")

    def keys(self, beginning):
        lines = self.run("run", self.device, "--", "nvram", "list").splitlines()
        return " ".join(sorted(line for line in lines if line.startswith(beginning)))

    def switch_on(self):
        words = [os.path.join(self.programs, "zqsim"), "run", self.device, "--supervised", "--",
                 os.path.join(self.programs, "sorel"), os.path.join(HERE, "screens.js")]
        self.screens = Screens(self.device, words, self.scratch, self.environment())
        self.tell("switched on")
        self.until("start: ready")

    def switch_off(self):
        self.tell(f"switched off: status {self.screens.switch_off()}")

    def cut_power(self):
        """Memory is lost with it."""
        self.screens.cut_power()
        for entry in os.scandir(self.path("tmp")):
            if entry.is_dir(follow_symlinks=False):
                shutil.rmtree(entry.path)
            else:
                os.remove(entry.path)
        self.tell("the power goes")

    def pass_by(self):
        self.make_device()
        self.switch_on()
        try:
            self.first_time()
            self.evening()
            self.night()
            self.given_away()
        finally:
            self.switch_off()

    def first_time(self):
        self.touch("scan", "networks:")
        self.tell("carried home")
        os.replace(os.path.join(self.scratch, "home"), self.path("hw", "ra0", "cells.ini"))
        self.touch("scan", "networks:")
        self.touch("join Lindenhof apfelbaum", "network: cannot join")
        self.touch("join Lindenhof quittenbaum", "network: online")
        self.becomes("address", "192.0.2.58", self.address)
        self.touch("zone Berlin", "clock:")
        self.becomes("clock's zone", "Europe/Amsterdam", self.zone)
        self.touch("done", "set-up:")
        self.becomes("set-up's mark", "net.firsttime=done", lambda: self.keys("net.firsttime"))

    def evening(self):
        self.touch("brightness 60", "screen:")
        self.becomes("backlight", "60", self.file("proc", "blctrl"))
        support.write(self.path("hw", "light"), "90\n")
        self.touch("dim true", "screen:")
        self.becomes("backlight", "67", self.file("proc", "blctrl"))
        self.light(50, 37)
        self.light(8, 6)

    def night(self):
        self.offer(1, "1.1.0")
        self.touch("updates", "start: ready")
        self.acknowledgements()
        self.switch_off()
        self.offer(2, "1.2.0", forced=True, first=SLOW_ONCE)
        self.switch_on()
        self.until("update: installs")
        self.becomes("installation", "began", lambda: "began" if os.path.exists(self.path("media", "began")) else "waits")
        self.cut_power()
        self.acknowledgements()
        self.switch_on()
        self.until("start: ready")
        self.acknowledgements()
        self.becomes("address", "192.0.2.58", self.address)
        self.touch("network", "network: online")

    def given_away(self):
        self.tell("carried away")
        support.write(self.path("hw", "ra0", "cells.ini"), "")
        self.touch("reset", "start: ready")
        self.tell(f"  keys: {self.keys('')}")
        self.touch("scan", "networks:")


def main():
    programs = os.path.abspath(sys.argv[1])
    scratch = tempfile.mkdtemp(prefix="day-")
    server = support.Server()
    day = Day(programs, scratch, server)
    problem = None
    try:
        day.pass_by()
    except AssertionError as error:
        problem = error
    finally:
        server.end()
    errors = os.path.join(scratch, "errors")
    said = support.read(errors).splitlines() if os.path.exists(errors) else []
    shutil.rmtree(scratch)
    # The module tells of every decryption there.
    said = [f"error: {line}" for line in said if not line.startswith(("Handles (2) ", "zqsim: the device reboots"))]
    text = "\n".join(day.told + said) + "\n"
    wanted = support.read(os.path.join(HERE, "day.txt"))
    if problem is None and text == wanted:
        return 0
    print("".join(difflib.unified_diff(wanted.splitlines(True), text.splitlines(True), "day.txt", "this day")))
    if problem:
        print(problem)
    return 1


if __name__ == "__main__":
    sys.exit(main())
