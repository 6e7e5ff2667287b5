"""What the typings promise of results is what the methods give, on every ready device.

  runtime_test.py FOLDER-OF-PROGRAMS
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
sys.path.insert(0, os.path.dirname(HERE))
import typings  # noqa: E402

PROGRAMS = None
PATIENCE = 100
# What a method that wants arguments is given.
ARGUMENTS = {"getIniSetting": "'clock', 'face'", "utf8Encode": "'abc'"}


def fits(value, kind, interfaces):
    """Whether the value is of the type: literals, string, number, an interface, arrays of them, and unions."""
    if kind.endswith("[]"):
        return isinstance(value, list) and all(fits(each, kind[:-2], interfaces) for each in value)
    if " | " in kind:
        return any(fits(value, each, interfaces) for each in kind.split(" | "))
    if kind in interfaces:
        fields = interfaces[kind].fields
        return (isinstance(value, dict) and list(value) == [field.name for field in fields]
                and all(fits(value[field.name], field.type, interfaces) for field in fields))
    if kind in ("string", "number"):
        return isinstance(value, str if kind == "string" else int) and not isinstance(value, bool)
    return value == json.loads(kind)


class RuntimeTest(unittest.TestCase):
    def setUp(self):
        device, interfaces = typings.read_typings()
        self.interfaces = {interface.name: interface for interface in interfaces}
        self.results = {method.name: method.result for method in device.methods if method.result != "void"}
        self.methods = [method.name for method in device.methods]

    def run_script(self, text, profile):
        with tempfile.TemporaryDirectory(prefix="runtime-test-") as folder:
            path, device = os.path.join(folder, "script.js"), os.path.join(folder, "device")
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
            subprocess.run([os.path.join(PROGRAMS, "zqsim"), "create", device, "--profile", profile], check=True)
            done = subprocess.run([os.path.join(PROGRAMS, "sorel"), "--device", device, path], capture_output=True,
                                  text=True, check=False, timeout=PATIENCE)
        # (A scan without radio says so on standard error.)
        self.assertEqual(done.returncode, 0, done.stderr)
        return json.loads(done.stdout)

    def test_results_are_of_the_promised_types_on_every_device(self):
        calls = ", ".join(f"{name}: util.{name}({ARGUMENTS.get(name, '')})" for name in self.results)
        script = f"const util = new ZQUtil(); print(JSON.stringify({{{calls}}})); exit(0);"
        for profile in ("home-phone", "tablet", "bare"):
            got = self.run_script(script, profile)
            self.assertEqual(list(got), list(self.results), "a method gave undefined")
            for name, kind in self.results.items():
                with self.subTest(profile=profile, method=name, got=got[name]):
                    self.assertTrue(fits(got[name], kind, self.interfaces), f"is no {kind}")
            # A list without entries would prove nothing of the entries.
            if profile != "bare":
                self.assertGreater(len(got["getESSIDList"]), 0)

    def test_about_summary_is_of_the_promised_type(self):
        script = ("const util = new ZQUtil();"
                  "util.registerAboutListener({ onResult(about) { print(JSON.stringify(about)); exit(0); } });")
        for profile in ("home-phone", "bare"):
            about = self.run_script(script, profile)
            self.assertTrue(fits(about, "ZQAbout", self.interfaces), about)

    def test_class_has_the_methods_of_the_typings_and_no_other(self):
        names = self.run_script("print(JSON.stringify(Object.getOwnPropertyNames(ZQUtil.prototype))); exit(0);", "bare")
        self.assertEqual(sorted(name for name in names if name != "constructor"), sorted(self.methods))

    def test_globals_of_the_typings_are_the_hosts(self):
        with open(os.path.join(os.path.dirname(HERE), "sorel.d.ts"), encoding="utf-8") as file:
            named = re.findall(r"^declare (?:function|const) (\w+)", file.read(), re.M)
        missing = f"{json.dumps(named)}.filter((name) => globalThis[name] === undefined)"
        script = f"print(JSON.stringify({missing})); exit(0);"
        self.assertEqual(self.run_script(script, "bare"), [])
        self.assertIn("print", named)

    def test_wrong_results_would_not_fit(self):
        for value, kind in ((True, "number"), (1, "string"), ("yes", '"YES" | "NO"'), (2, "0 | 1"), ({}, "ZQVersion"),
                            ([{"Name": "x"}], "ZQTimeZone[]"), ({"Software": "", "Firmware": ""}, "ZQVersion")):
            self.assertFalse(fits(value, kind, self.interfaces), kind)


if __name__ == "__main__":
    PROGRAMS = os.path.abspath(sys.argv.pop(1))
    unittest.main()
