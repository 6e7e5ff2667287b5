"""A device with the module, and the tools at the other end: an update from the folder to the acknowledgement, and what
the device makes of a server that misbehaves.

  end_to_end_test.py FOLDER-OF-PROGRAMS
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
import at_once  # noqa: E402

EXAMPLE = os.path.join(support.ROOT, "examples", "packages", "hello-update")
PROGRAMS = None

# Says what the update listener hears, with each argument as it is.
LISTEN = """
const util = new ZQUtil();
const isThere = (path) => {
  try {
    load(path);
  } catch (error) {
    return !error.message.endsWith('No such file or directory');
  }
  return true;
};
util.registerUpdateListener({
  forcedUpdateAvailable: (...none) => print('forced', ...none),
  onDownloading: (...values) => print('downloading', ...values.map((value) => JSON.stringify(value))),
  onInstalling: (...none) => print('installing', ...none),
  // The device cleans up after this call.
  onDownloadFailed: (...none) => {
    print('failed', ...none);
    setInterval(() => { if (!isThere('/tmp/app-hello-update.tgz')) exit(0); }, 50);
  },
});
"""
# Takes the first update that is offered.
TAKE_UPDATE = LISTEN + """
const look = setInterval(() => {
  const [first] = util.GetUpdateList();
  if (!first) return;
  clearInterval(look);
  print('offered', JSON.stringify(first));
  util.beginUpdate(first.ID);
}, 50);
"""
OFFERED = 'offered {"ID":7,"Name":"Hello"}'
# Says whether the server could be reached, and what it offered a moment later.
CHECK = """
const util = new ZQUtil();
const tell = (result) => {
  print(result);
  setTimeout(() => { print(util.GetUpdateList().length); exit(0); }, 300);
};
util.registerConnectivityListener({
  onConnectSuccess: () => tell('reached'),
  onConnectFailure: () => tell('not reached'),
});
util.checkConnectivity();
"""


class EndToEndTest(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.mkdtemp(prefix="end-to-end-")
        self.addCleanup(shutil.rmtree, self.scratch)
        self.server = support.Server()
        self.addCleanup(self.server.end)
        self.device = os.path.join(self.scratch, "device")
        self.run_program("zqsim", "create", self.device)
        support.write(os.path.join(self.device, "zqapplog.ini"),
                      f"[config]\nhost = localhost\nsslport = {self.server.https}\n")

    def environment(self):
        # The server's folder is the machine's, although a device has a /tmp of its own.
        environment = {**os.environ, "ZQ_CA_FILE": self.server.said["ca-file"], "ZQ_TRACE": "off",
                       "ZQ_SIM_HOST_PATHS": self.server.folder}
        for name_of_proxy in ("http_proxy", "no_proxy", "https_proxy"):
            environment.pop(name_of_proxy, None)
        return environment

    def run_program(self, name, *words):
        done = subprocess.run([os.path.join(PROGRAMS, name), *words], capture_output=True, text=True, check=False,
                              env=self.environment(), cwd=self.scratch, timeout=support.PATIENCE)
        # The module tells of every decryption there.
        errors = [line for line in done.stderr.splitlines() if not line.startswith("Handles (2) ")]
        self.assertEqual((done.returncode, errors), (0, []), done.stdout)
        return done.stdout

    def nvram(self, *words):
        return self.run_program("zqsim", "run", self.device, "--", "nvram", *words)

    def script(self, text):
        """What the script prints, without what the module says of its checks and the decryption."""
        path = os.path.join(self.scratch, "script.js")
        support.write(path, text)
        lines = self.run_program("sorel", "--device", self.device, path).splitlines()
        return [line for line in lines if line != "Checking For Available Updates..."]

    def offer(self, settings, *options, folder=EXAMPLE):
        """Packs the folder and offers it as number 7."""
        packages = os.path.join(self.server.folder, "packages")
        done = support.run(os.path.join(support.TOOLS, "make-update"), "-o", packages, *options, folder)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.server.settings(f"[{os.path.basename(done.stdout.strip())}]\nid = 7\ncomment = Hello\n{settings}")

    def acknowledged(self):
        """The log's lines without time and address; none without a log."""
        path = os.path.join(self.server.folder, "acknowledgements.log")
        lines = support.read(path).splitlines() if os.path.exists(path) else []
        return [re.sub(" mac=.*", "", line.split(" ", 1)[1]) for line in lines]


class UpdateTest(EndToEndTest):
    def setUp(self):
        super().setUp()
        # A board that installs by the package's script, and a package that wants no reboot.
        for key, value in (("sys.bldrver", "1"), ("sys.numparts", "4"), ("sys.reboot", "no")):
            self.nvram("set", key, value)

    def installed(self):
        path = os.path.join(self.device, "updates", "hello.txt")
        return os.path.exists(path) and support.read(path) == support.read(os.path.join(EXAMPLE, "hello.txt"))

    def left_over(self):
        return [name for name in os.listdir(os.path.join(self.device, "tmp")) if re.match(r"c?app-", name)]

    def test_optional_update_is_offered_chosen_installed_and_acknowledged(self):
        self.offer("")
        self.assertEqual(self.script(TAKE_UPDATE), [OFFERED, "downloading 100", "installing"])
        self.assertTrue(self.installed())
        self.assertEqual(self.acknowledged(), ["device=1 update=7"])
        # The device keeps its number, and the server does not offer the update again.
        self.assertIn("deviceid=1\n", support.read(os.path.join(self.device, "zqutil.ini")))
        self.assertEqual(self.script(CHECK), ["reached", "0"])

    def test_update_screen_of_the_examples_takes_what_is_offered(self):
        self.offer("")
        said = self.script(support.read(os.path.join(support.ROOT, "examples", "update.js")))
        self.assertEqual(said[1:], ["asking for updates; Ctrl-C ends", "update 7: Hello", "[" + "#" * 20 + "] 100 %",
                                    "installing; do not switch the device off"])
        self.assertTrue(self.installed())

    def test_forced_encrypted_update_installs_itself(self):
        self.offer("forced = yes\n", "--encrypt")
        self.assertEqual(self.script(LISTEN), ["forced", "downloading 100", "installing"])
        self.assertTrue(self.installed())
        self.assertEqual(self.acknowledged(), ["device=1 update=7"])

    def test_package_comes_over_https_from_a_server_that_proves_its_name(self):
        self.offer("[server]\npackages = https\n")
        self.assertEqual(self.script(TAKE_UPDATE), [OFFERED, "downloading 100", "installing"])
        self.assertTrue(self.installed())

    def test_broken_download_is_told_and_leaves_nothing(self):
        self.offer("")
        self.server.fault("package", "cut-body")
        self.assertEqual(self.script(TAKE_UPDATE)[-1], "failed")
        self.assertFalse(self.installed())
        self.assertEqual((self.acknowledged(), self.left_over()), ([], []))

    def test_package_that_does_not_say_that_all_went_well_is_not_acknowledged(self):
        silent = os.path.join(self.scratch, "silent")
        os.mkdir(silent)
        support.write(os.path.join(silent, "run"), "#!/bin/sh\nexit 0\n")
        self.offer("", folder=silent)
        self.assertEqual(self.script(TAKE_UPDATE), [OFFERED, "downloading 100", "installing"])
        self.assertEqual(self.acknowledged(), [])

    def test_board_whose_system_installs_gets_the_package_and_says_when_it_is_done(self):
        self.nvram("set", "sys.bldrver", "0")
        self.offer("")
        self.assertEqual(self.script(TAKE_UPDATE), [OFFERED, "downloading 100", "installing"])
        self.assertTrue(self.installed())
        self.assertEqual(os.listdir(os.path.join(self.device, "updates")), ["hello.txt"])
        self.assertEqual((self.acknowledged(), self.left_over()), (["device=1 update=7"], []))

    def test_acknowledgement_that_finds_no_server_is_sent_by_the_next_check(self):
        self.nvram("set", "upack.key", "12&34")
        # Sent four seconds after the start; then the device "installs" and ends as after every acknowledgement.
        self.assertEqual(self.script(LISTEN), [])
        self.assertEqual(self.acknowledged(), ["device=34 update=12"])


class MisbehaviourTest(EndToEndTest):
    def setUp(self):
        super().setUp()
        self.offer("")

    def test_only_a_server_that_proves_its_name_is_reached(self):
        for fault in ("expired", "wrong-name", "unknown-ca", "old-version", "no-tls", "refuse"):
            self.server.fault("tls", fault)
            self.assertEqual(self.script(CHECK), ["not reached", "0"], fault)
        self.server.fault("tls", "h2")
        self.assertEqual(self.script(CHECK)[0], "reached")

    def test_answers_that_are_not_sound_offer_nothing(self):
        for fault in ("silence", "cut-header", "cut-body", "long-length", "two-lengths", "bad-chunk", "redirect", "404",
                      "nonsense", "huge", "elements", "deep", "entities", "two-roots", "missing-attributes", "not-xml",
                      "cut-document", "empty"):
            self.server.fault("check", fault)
            self.assertEqual(self.script(CHECK), ["reached", "0"], fault)


if __name__ == "__main__":
    PROGRAMS = os.path.abspath(sys.argv.pop(1))
    at_once.main()
