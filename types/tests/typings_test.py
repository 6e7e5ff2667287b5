"""The typings say what the method table says, and no more; scripts compile against them."""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.dirname(HERE))
import typings  # noqa: E402

TABLE = os.path.join(ROOT, "class_modules", "ZQUtil", "src", "ZQUtilMethodTable.h")
TYPINGS = [os.path.join(ROOT, "types", name) for name in ("zqutil.d.ts", "sorel.d.ts")]
PINNED = os.path.join(HERE, "pinned.ts")
COUNT = 73
# Where the count that the engine is told is not the number of arguments that the method knows.
TOLD_OTHERWISE = {
    "getIniSetting": (2, 3),  # the default may be left out
    "deleteIniFile": (1, 2),
    "checkConnectivity": (1, 0),
}


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def table():
    """(script name, declared count) of every method, in the order of definition."""
    rows = re.findall(r'^\s*(?:METHOD|FUNCTION)\("(\w+)", (\d+), \w+\)', read(TABLE), re.M)
    return [(name, int(declared)) for name, declared in rows if name != "constructor"]


def told(method):
    known = len(method.parameters)
    declared, of = TOLD_OTHERWISE.get(method.name, (known, known))
    return declared if of == known else f"{known} arguments, not {of}"


class TableTest(unittest.TestCase):
    def setUp(self):
        self.device, self.interfaces = typings.read_typings()

    def test_typings_are_the_method_table(self):
        self.assertEqual([(method.name, told(method)) for method in self.device.methods], table())

    def test_there_are_as_many_as_the_class_has(self):
        names = [method.name for method in self.device.methods]
        self.assertEqual(len(names), COUNT)
        self.assertEqual(len(set(names)), COUNT)


class SourceTest(unittest.TestCase):
    """Names that the typings share with the sources, where no call of a test would miss one."""

    @staticmethod
    def sources(*folders):
        for folder in folders:
            for name in sorted(os.listdir(os.path.join(ROOT, folder))):
                if name.endswith((".cpp", ".h")):
                    yield read(os.path.join(ROOT, folder, name))

    def test_listeners_have_the_methods_that_the_module_calls(self):
        called = set()
        for text in self.sources("class_modules/ZQUtil/src"):
            called.update(re.findall(r'"(on[A-Z]\w+|forced\w+Available)"', text))
        interfaces = typings.read_typings()[1]
        self.assertEqual({method.name for interface in interfaces for method in interface.methods}, called)
        self.assertGreater(len(called), 10)

    def test_globals_are_those_that_the_host_adds(self):
        added = set()
        for text in self.sources("host/sorel/src"):
            added.update(re.findall(r'(?:AddFunction|SetProperty)\(context, global, "(\w+)"', text))
        self.assertEqual(set(re.findall(r"^declare (?:function|const) (\w+)", read(TYPINGS[1]), re.M)), added)
        self.assertGreater(len(added), 8)


class CommentTest(unittest.TestCase):
    def setUp(self):
        self.device, self.interfaces = typings.read_typings()

    def test_every_method_and_argument_is_explained(self):
        for method in self.device.methods:
            with self.subTest(method=method.name):
                self.assertGreater(len(method.about), 20)
                self.assertNotEqual(method.group, "")
                for parameter in method.parameters:
                    self.assertNotEqual(parameter.about, "", parameter.name)

    def test_every_type_that_is_named_is_there(self):
        declared = {each.name for each in self.interfaces} | {"ZQText", "ZQUtil"}
        self.assertEqual(set(re.findall(r"\bZQ[A-Z]\w+", read(typings.TYPINGS))) - {"ZQUtil"}, declared - {"ZQUtil"})


class CompilerTest(unittest.TestCase):
    def compile(self, *files, check=True, device=TYPINGS[0]):
        """What the compiler has to say of scripts that know the language, sorel's globals and the typings."""
        # Scripts name no types of their own.
        options = {"noEmit": True, "strict": True, "noImplicitAny": False, "useUnknownInCatchVariables": False,
                   "allowJs": True, "checkJs": True, "target": "es2022", "lib": ["es2022"], "types": [],
                   "moduleDetection": "force"}
        with tempfile.TemporaryDirectory(prefix="typings-test-") as folder:
            project = os.path.join(folder, "tsconfig.json")
            with open(project, "w", encoding="utf-8") as file:
                json.dump({"compilerOptions": options, "files": [device, TYPINGS[1], *files]}, file)
            done = subprocess.run(["tsc", "--pretty", "false", "-p", project], capture_output=True, text=True,
                                  check=False, timeout=300)
        if check:
            self.assertEqual((done.returncode, done.stdout), (0, ""))
        return done

    def test_examples_compile(self):
        folder = os.path.join(ROOT, "examples")
        scripts = [os.path.join(folder, name) for name in sorted(os.listdir(folder)) if name.endswith(".js")]
        self.assertNotEqual(scripts, [])
        self.compile(*scripts)

    def test_every_method_can_be_called_as_described_and_misuse_and_other_types_are_found(self):
        usage = os.path.join(HERE, "usage.ts")
        for method in typings.read_typings()[0].methods:
            self.assertRegex(read(usage), rf"\butil\.{method.name}\(")
        # In misuse.ts every line is wrong; the compiler complains of one that it takes.
        self.compile(usage, os.path.join(HERE, "misuse.ts"), PINNED)

    def test_another_type_is_found_and_named(self):
        text = read(TYPINGS[0])
        slips = {"getBrightness": ("getBrightness(): string", "getBrightness(): number"),
                 "onDownloading": ("onDownloading?(percent: number)", "onDownloading?(percent: string)"),
                 "Encrypted": ("Encrypted: 0 | 1", "Encrypted: boolean")}
        for right, wrong in slips.values():
            self.assertEqual(text.count(right), 1)
            text = text.replace(right, wrong)
        with tempfile.TemporaryDirectory(prefix="typings-test-") as folder:
            path = os.path.join(folder, "zqutil.d.ts")
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
            done = self.compile(PINNED, check=False, device=path)
        for name in slips:
            self.assertIn(f'"{name}"', done.stdout)

    def test_compiler_would_find_a_method_that_is_not_there(self):
        with tempfile.TemporaryDirectory(prefix="typings-test-") as folder:
            path = os.path.join(folder, "wrong.js")
            with open(path, "w", encoding="utf-8") as file:
                file.write("new ZQUtil().getBrightnes();\n")
            done = self.compile(path, check=False)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("getBrightnes", done.stdout)


if __name__ == "__main__":
    unittest.main()
