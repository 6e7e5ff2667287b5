"""The power goes in the middle of an update, in each of its stages: the device comes back, and the next check installs.

  killed_update_test.py FOLDER-OF-PROGRAMS
"""

import os
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))
import end_to_end_test as end_to_end  # noqa: E402
import support  # noqa: E402
import at_once  # noqa: E402

# A run script that takes its time when it is run for the first time.
SLOW_ONCE = "[ -e /media/began ] || { echo > /media/began; sleep 60; }\n"
# What has done its work, and ends when it is told to.
HELD = ": > /updates/held\nnvram set update.done 1\n: > /media/began\nuntil [ -e /media/go ]; do sleep 0.05; done\n"
# Long enough that its decryption and its copies can be met half way.
LARGE = 64 << 20


class KilledUpdateTest(end_to_end.EndToEndTest):
    def setUp(self):
        super().setUp()
        self.board("1", "4")

    def board(self, bootloader, partitions):
        for key, value in (("sys.bldrver", bootloader), ("sys.numparts", partitions), ("sys.reboot", "no")):
            self.nvram("set", key, value)

    def folder(self, run, fill=0):
        """A package's folder with that run script, and so many bytes that do not shrink."""
        folder = os.path.join(self.scratch, "package")
        os.makedirs(folder, exist_ok=True)
        support.write(os.path.join(folder, "run"), "#!/bin/sh\n" + run)
        with open(os.path.join(folder, "fill"), "wb") as file:
            file.write(os.urandom(fill))
        return folder

    def kill_when(self, reached):
        """Starts the device, and takes its power away when `reached` says so."""
        path = os.path.join(self.scratch, "killed.js")
        support.write(path, end_to_end.TAKE_UPDATE)
        device = subprocess.Popen([os.path.join(end_to_end.PROGRAMS, "sorel"), "--device", self.device, path],
                                  env=self.environment(), cwd=self.scratch, start_new_session=True,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + support.PATIENCE
        try:
            while not reached():
                self.assertIsNone(device.poll(), "the device ended before its power could")
                self.assertLess(time.monotonic(), deadline, "the stage was not reached")
                time.sleep(0.001)
        finally:
            support.cut_power(device, self.device)

    def assert_comes_back(self):
        self.server.fault("package", "none")
        self.server.fault("acknowledge", "none")
        self.nvram("set", "sys.reboot", "no")
        self.offer("")
        self.assertEqual(self.script(end_to_end.TAKE_UPDATE), [end_to_end.OFFERED, "downloading 100", "installing"])
        self.assertTrue(os.path.exists(os.path.join(self.device, "updates", "hello.txt")))
        self.assertEqual(self.acknowledged()[-1:], ["device=1 update=7"])

    def on_device(self, *names):
        return os.path.join(self.device, *names)

    def test_while_the_package_comes(self):
        self.offer("")
        self.server.fault("package", "trickle")
        self.kill_when(lambda: any(name.startswith("app-") for name in os.listdir(self.on_device("tmp"))))
        self.assert_comes_back()

    def test_while_the_package_is_decrypted(self):
        self.offer("", "--encrypt", folder=self.folder("exit 0\n", LARGE))
        self.kill_when(lambda: os.path.exists(self.on_device("tmp", "app-package.tgz")))
        self.assert_comes_back()

    def test_while_the_package_is_copied(self):
        self.board("0", "2")
        self.offer("", folder=self.folder("exit 0\n", LARGE))
        self.kill_when(lambda: os.listdir(self.on_device("updates")))
        # Half a copy is no package: what the system's updater finds is whole or not there.
        whole = os.path.join(self.server.folder, "packages", "app-package.tgz")
        copy = self.on_device("updates", "app-package.tgz")
        if os.path.exists(copy):
            self.assertEqual(os.path.getsize(copy), os.path.getsize(whole))
            os.remove(copy)
        self.assert_comes_back()

    def test_while_the_packages_script_runs(self):
        self.offer("", folder=self.folder(SLOW_ONCE))
        self.kill_when(lambda: os.path.exists(self.on_device("media", "began")))
        self.assertEqual(self.acknowledged(), [])
        self.assert_comes_back()

    def test_while_the_system_installs(self):
        self.board("0", "4")
        self.offer("", folder=self.folder(SLOW_ONCE))
        self.kill_when(lambda: os.path.exists(self.on_device("media", "began")))
        self.assertEqual(self.acknowledged(), [])
        self.assert_comes_back()

    def test_before_the_server_is_told(self):
        def reaches_the_server():
            if not os.path.exists(self.on_device("media", "began")):
                return False
            self.server.fault("tls", "stall")
            support.write(self.on_device("media", "go"), "")
            while not self.server.next_line().startswith("handshake "):
                pass
            return True

        self.offer("", folder=self.folder(HELD))
        self.kill_when(reaches_the_server)
        self.assertTrue(os.path.exists(self.on_device("updates", "held")))
        self.assertEqual(self.acknowledged(), [])
        self.assert_comes_back()

    def test_after_the_server_was_told(self):
        self.offer("")
        self.server.fault("acknowledge", "slow", seconds=30)
        self.kill_when(self.acknowledged)
        self.server.fault("acknowledge", "none")
        self.assertTrue(os.path.exists(self.on_device("updates", "hello.txt")))
        self.assertEqual(self.script(end_to_end.CHECK), ["reached", "0"])
        self.assertEqual(self.acknowledged(), ["device=1 update=7"])


if __name__ == "__main__":
    end_to_end.PROGRAMS = os.path.abspath(sys.argv.pop(1))
    at_once.main()
