"""The commands of tools/README.md, typed as they stand: from a folder to an acknowledged update.

readme_test.py FOLDER-OF-PROGRAMS
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))
import support  # noqa: E402

PROGRAMS = os.path.abspath(sys.argv.pop())
SERVE = "tools/update-server --port 8443 updates"


def commands():
    """The indented lines of the first section that start a program."""
    section = support.read(os.path.join(support.TOOLS, "README.md")).split("\n## ")[1]
    return re.findall(r"^    ((?:tools/|build/|printf |ZQ_CA_FILE=).*)$", section, re.M)


class ReadmeTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="tools-readme-", dir=os.path.dirname(PROGRAMS))
        self.addCleanup(shutil.rmtree, self.folder)
        for name in ("tools", "examples"):
            os.symlink(os.path.join(support.ROOT, name), os.path.join(self.folder, name))
        os.symlink(os.path.dirname(PROGRAMS), os.path.join(self.folder, "build"))

    def shell(self, line):
        done = support.run("sh", "-c", line, cwd=self.folder)
        self.assertEqual((done.returncode, done.stderr), (0, ""), line)

    def test_the_commands_lead_to_an_update_that_the_device_has_acknowledged(self):
        typed = commands()
        serve, look = typed.index(SERVE), len(typed) - 1
        self.assertEqual(serve, 1)
        for line in typed[:serve]:
            self.shell(line)
        server = support.Server("--port", "0", folder=os.path.join(self.folder, "updates"))
        self.addCleanup(server.end)
        for line in typed[serve + 1:look]:
            self.shell(line.replace("8443", str(server.https)))
        with subprocess.Popen(["sh", "-c", "exec env " + typed[look]], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True) as device:
            said = [server.next_line().split(" peer=")[0] for _ in range(3)]
            # The device restarts by itself, and its script with it.
            heard = []
            for line in device.stdout:
                heard.append(line.rstrip("\n"))
                if heard[-1] == "zqsim: the device reboots":
                    break
            device.terminate()
            device.communicate(timeout=support.PATIENCE)
        self.assertEqual([line.split(" bytes=")[0] for line in said],
                         ["check device=1 updates=1", "package name=capp-hello-update.tgz",
                          "acknowledged device=1 update=1"])
        self.assertIn("update 1: Hello", heard)
        self.assertIn("installing; do not switch the device off", heard)
        self.assertEqual(support.read(os.path.join(self.folder, "device", "updates", "hello.txt")),
                         "Hello from the update.\n")


if __name__ == "__main__":
    unittest.main(verbosity=2)
