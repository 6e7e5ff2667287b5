"""The documentation is true: links lead somewhere, the reference is the typings', every snippet runs as it says.

  docs_test.py FOLDER-OF-PROGRAMS

A snippet (a block of ```js) runs by itself on a fresh simulated home-phone, with `util` ready when it makes none. What
it prints must be its comments "// → TEXT", line by line, when it has any. Comments before the block say more:

  <!-- device: tablet -->           another profile
  <!-- before: COMMAND -->          a shell command first, in the device's folder
  <!-- ends after: 300 -->          milliseconds after which it is ended; without it, it must come to an end itself
"""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path.insert(0, HERE)
import build_state  # noqa: E402
import markdown  # noqa: E402
from markdown import ROOT  # noqa: E402

sys.path.insert(0, os.path.join(ROOT, "tests", "support"))
import at_once  # noqa: E402

PATIENCE = 100
PROGRAMS = None


def all_snippets():
    return [snippet for path in markdown.files() for snippet in markdown.snippets(path)]


def script(snippet):
    """The snippet as a program of its own."""
    code = snippet.code
    if not re.search(r"\butil = new ZQUtil", code):
        # On the first line, so that errors name the lines of the block.
        code = "const util = new ZQUtil(); " + code
    # A listener or a timer keeps the host alive, and so does the object itself.
    milliseconds = snippet.options.get("ends after")
    return code + (f"setTimeout(() => exit(0), {milliseconds});\n" if milliseconds else "exit(0);\n")


def wanted_output(snippet):
    found = re.findall(r"// → (.*)$", snippet.code, re.M)
    return [line.rstrip() for line in found] or None


class BuildStateTest(unittest.TestCase):
    def test_a_program_that_is_missing_or_stale_is_named(self):
        with tempfile.TemporaryDirectory(prefix="docs-test-") as build:
            for name in build_state.BUILT_FROM:
                os.makedirs(os.path.dirname(os.path.join(build, name)), exist_ok=True)
                with open(os.path.join(build, name), "w", encoding="utf-8"):
                    pass
            self.assertEqual(build_state.complaints(build, ROOT), [])
            os.remove(os.path.join(build, "bin/zqsim"))
            os.utime(os.path.join(build, "lib/ZQUtil.so"), (0, 0))
            missing, stale = build_state.complaints(build, ROOT)
        self.assertEqual(missing, f"{build}/bin/zqsim is missing: run make build")
        self.assertRegex(stale, r"/lib/ZQUtil\.so is older than class_modules/ZQUtil/src/\w+\.(cpp|h): run make build")


class LinkTest(unittest.TestCase):
    def test_links_lead_to_files_and_headings(self):
        for path in markdown.files():
            for line, target in markdown.links(path):
                with self.subTest(file=path, line=line, target=target):
                    if re.match(r"https?:|mailto:", target):
                        continue
                    name, _, heading = target.partition("#")
                    full = os.path.normpath(os.path.join(os.path.dirname(path), name)) if name else path
                    self.assertFalse(full.startswith(".."), "leads out of the repository")
                    self.assertTrue(os.path.exists(os.path.join(ROOT, full)), "no such file")
                    if heading:
                        self.assertIn(heading, markdown.anchors(full))

    def test_test_would_find_a_heading_that_is_gone(self):
        self.assertIn("getbrightness", markdown.anchors("docs/reference.md"))
        self.assertNotIn("getbrightnes", markdown.anchors("docs/reference.md"))


class ReferenceTest(unittest.TestCase):
    def test_reference_is_what_the_typings_say(self):
        done = subprocess.run([os.path.join(ROOT, "docs", "generate-reference.py"), "--check"], capture_output=True,
                              text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))


class ExampleTest(unittest.TestCase):
    def run_example(self, name, prepare=""):
        """Its lines on a fresh home-phone, after a shell command in the device's folder."""
        with tempfile.TemporaryDirectory(prefix="docs-test-") as folder:
            device = os.path.join(folder, "device")
            subprocess.run([os.path.join(PROGRAMS, "zqsim"), "create", device], check=True, capture_output=True)
            subprocess.run(["sh", "-ec", prepare], cwd=device, check=True)
            done = subprocess.run([os.path.join(PROGRAMS, "sorel"), "--device", device,
                                   os.path.join(ROOT, "examples", name)], capture_output=True, text=True, check=False,
                                  timeout=PATIENCE, cwd=folder)
        return done.returncode, [line for line in done.stdout.splitlines() if not line.startswith("Checking For ")]

    def test_settings_screen_obeys_its_keys(self):
        self.assertEqual(self.run_example("settings.js"), (0, [
            "before",
            " > Brightness         ########## 100",
            "   Contrast           #......... 2",
            "   Volume             ########.. 75",
            "   Follow the light   [ ]",
            "   24 hours           [ ]",
            "   Time from the net  [x]",
            "   Time zone          (GMT-05:00) Eastern Time (US & Canada)",
            "",
            "after some keys",
            "   Brightness         ########.. 80",
            "   Contrast           ##........ 3",
            "   Volume             #######... 70",
            "   Follow the light   [x]",
            "   24 hours           [x]",
            "   Time from the net  [x]",
            " > Time zone          (GMT-05:00) Indiana (East)"]))

    def test_wireless_chooser_joins_the_network_that_it_knows(self):
        nobody = "printf '[config]\\nhost = localhost\\nsslport = 1\\n' > zqapplog.ini"
        self.assertEqual(self.run_example("wifi.js", nobody), (0, [
            "looking for networks",
            "  ||||| Lindenhof            WPA-PSK WPA2",
            "  ||||. Cafe Anna            open",
            "  |||.. Werkstatt            WPA-PSK WPA2",
            "  ||... Altes Netz           WEP None",
            "joining Lindenhof",
            "... joined",
            "... asking for an address",
            "... looking for the Internet",
            "joined, but the update server is not there",
            "address 192.0.2.58, gateway 192.0.2.1"]))

    def test_wireless_chooser_says_when_the_password_is_wrong(self):
        changed = "sed -i 's/^password = quittenbaum/password = another/' hw/ra0/cells.ini"
        status, lines = self.run_example("wifi.js", changed)
        self.assertEqual((status, lines[-3:-1]), (1, ["joining Lindenhof", "could not join: is the password right?"]))


class SnippetTest(unittest.TestCase):
    def test_there_are_snippets(self):
        self.assertGreater(len(all_snippets()), 5)

    def test_every_snippet_runs_and_prints_what_it_says(self):
        snippets = all_snippets()
        for snippet, done in zip(snippets, at_once.mapped(self.run_snippet, snippets)):
            with self.subTest(file=snippet.file, line=snippet.line):
                self.check_snippet(snippet, done)

    def run_snippet(self, snippet):
        with tempfile.TemporaryDirectory(prefix="docs-test-") as folder:
            device, path = os.path.join(folder, "device"), os.path.join(folder, "snippet.js")
            with open(path, "w", encoding="utf-8") as file:
                file.write(script(snippet))
            profile = snippet.options.get("device", "home-phone")
            subprocess.run([os.path.join(PROGRAMS, "zqsim"), "create", device, "--profile", profile], check=True,
                           capture_output=True)
            if "before" in snippet.options:
                subprocess.run(["sh", "-ec", snippet.options["before"]], cwd=device, check=True)
            done = subprocess.run([os.path.join(PROGRAMS, "sorel"), "--device", device, path], capture_output=True,
                                  text=True, check=False, timeout=PATIENCE, cwd=folder)
        return done

    def check_snippet(self, snippet, done):
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        wanted = wanted_output(snippet)
        if wanted is not None:
            # The module says itself when it asks the update server.
            said = [line for line in done.stdout.splitlines() if line != "Checking For Available Updates..."]
            self.assertEqual(said, wanted)

    def test_every_snippet_compiles_against_the_typings(self):
        options = {"noEmit": True, "strict": True, "noImplicitAny": False, "useUnknownInCatchVariables": False,
                   "allowJs": True, "checkJs": True, "target": "es2022", "lib": ["es2022"], "types": [],
                   "moduleDetection": "force"}
        with tempfile.TemporaryDirectory(prefix="docs-test-") as folder:
            names = []
            for snippet in all_snippets():
                name = f"{snippet.file.replace('/', '_')}_line_{snippet.line}.js"
                with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                    file.write(script(snippet))
                names.append(name)
            typings = [os.path.join(ROOT, "types", name) for name in ("zqutil.d.ts", "sorel.d.ts")]
            project = os.path.join(folder, "tsconfig.json")
            with open(project, "w", encoding="utf-8") as file:
                json.dump({"compilerOptions": options, "files": typings + names}, file)
            done = subprocess.run(["tsc", "--pretty", "false", "-p", project], capture_output=True, text=True,
                                  check=False, timeout=PATIENCE)
        self.assertEqual((done.returncode, done.stdout), (0, ""))


if __name__ == "__main__":
    PROGRAMS = os.path.abspath(sys.argv.pop(1))
    wrong = build_state.complaints(os.path.dirname(PROGRAMS), ROOT)
    if wrong:
        sys.exit("\n".join(wrong))
    at_once.main()
