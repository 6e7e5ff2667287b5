"""The integrators' guide names what the sources touch: every key, path and variable, and only traces that exist."""

import os
import re
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))
import markdown  # noqa: E402

GUIDE = "docs/guide-integrators.md"
SHIPPED = [os.path.join(markdown.ROOT, *path) for path in
           (("class_modules", "ZQUtil", "src"), ("platform",), ("host", "sorel", "src"))]
# What the sources name and an integrator need not know.
UNTOLD = {
    "/tmp/",  # what stands before a package's name
    "/media",  # its free space goes to the trace
    "/tmp/.popen-XXXXXX",  # a command's output while it runs
    "/proc/self/exe", "/proc/self/fd", "/proc/self/fd/", "/proc/thread-self", "/dev/null", "/dev/urandom",
}


def sources(folders):
    for folder in folders:
        for root, folders_in, names in os.walk(folder):
            folders_in[:] = [name for name in folders_in if name not in ("tests", "bench")]
            for name in names:
                if name.endswith((".cpp", ".h")):
                    with open(os.path.join(root, name), encoding="utf-8") as file:
                        yield file.read()


def strings(folders, pattern):
    """The string literals of the code, comments left out, that the pattern matches whole."""
    found = set()
    for text in sources(folders):
        code = re.sub(r'^\s*//.*$|\s//\s[^"]*$', "", text, flags=re.M)
        found.update(each for each in re.findall(r'"((?:[^"\\\n]|\\.)*)"', code) if re.fullmatch(pattern, each))
    return found


class IntegratorsTest(unittest.TestCase):
    def setUp(self):
        self.guide = markdown.read(GUIDE)

    def test_every_key_of_the_store_is_listed(self):
        keys = strings(SHIPPED[:1], r"(net|sys|hwinfo|update|upack)\.[a-zA-Z]+")
        self.assertGreater(len(keys), 25)
        self.assertEqual(sorted(key for key in keys if f"`{key}`" not in self.guide), [])

    def test_every_path_of_the_device_is_listed(self):
        paths = strings(SHIPPED[:1], r"/(proc|sys|etc|tmp|dev|updates|media|usr|brimvale)(/[^%\s]*)?") - UNTOLD
        self.assertGreater(len(paths), 15)
        words = re.findall(r"`([^`\n]+)`", self.guide)
        told = words + [word[:word.index("…")] for word in words if "…" in word]
        missing = [path for path in paths if not any(path == word or (word.endswith("/") and path.startswith(word))
                                                     for word in told)]
        # The zones have a table of their own, and the guide their folder.
        missing = [path for path in missing if not path.startswith("/usr/share/zoneinfo/")]
        # A file of the battery may be told after its neighbour, by its name alone.
        missing = [path for path in missing if not (os.path.basename(path) in told and any(
            os.path.dirname(path) == os.path.dirname(word) for word in told))]
        self.assertEqual(sorted(missing), [])

    def test_every_variable_of_the_environment_is_listed(self):
        variables = set()
        for text in sources(SHIPPED):
            variables.update(re.findall(r'getenv\("(ZQ_\w+|http_proxy|no_proxy)"\)', text))
        # The host's own way onto a simulated device.
        variables -= {"ZQ_DEVICE", "ZQ_SIM_HOST_PATHS"}
        self.assertIn("ZQ_CONFIG_DIR", variables)
        self.assertEqual(sorted(name for name in variables if f"`{name}`" not in self.guide), [])

    def test_traces_to_look_for_exist(self):
        table = self.guide[self.guide.index("## When it does not work"):]
        quoted = re.findall(r'"([^"]+)"', table)
        self.assertGreater(len(quoted), 3)
        code = re.sub(r'"\s*\n\s*"', "", "\n".join(sources(SHIPPED)))
        for text in quoted:
            with self.subTest(text=text):
                # A path in the text is an argument of the trace.
                self.assertRegex(code, re.escape(re.sub(r" /\S+", " %s", text)))


if __name__ == "__main__":
    unittest.main()
