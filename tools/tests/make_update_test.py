"""make-update: what it packs, what it refuses, and that a device's own steps undo it."""

import gzip
import os
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))
import support  # noqa: E402

MAKE_UPDATE = os.path.join(support.TOOLS, "make-update")
EXAMPLE = os.path.join(support.ROOT, "examples", "packages", "hello-update")
KEY_FILE = os.path.join(support.ROOT, "class_modules", "ZQUtil", "update_key.txt")


def contents(path):
    with open(path, "rb") as file:
        return file.read()


class MakeUpdateTest(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.mkdtemp(prefix="make-update-test-")
        self.addCleanup(shutil.rmtree, self.scratch)
        self.folder = os.path.join(self.scratch, "new")
        shutil.copytree(EXAMPLE, self.folder)
        self.out = os.path.join(self.scratch, "out")
        os.mkdir(self.out)

    def make(self, *words, folder=None, **options):
        return support.run(MAKE_UPDATE, "-o", self.out, *words, folder or self.folder, **options)

    def made(self, *words, **options):
        done = self.make(*words, **options)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        path = done.stdout.rstrip("\n")
        self.assertTrue(os.path.isfile(path), path)
        return path

    def refused(self, done, reason):
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stdout, "")
        self.assertIn(reason, done.stderr)
        self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
        self.assertEqual(os.listdir(self.out), [])

    def test_folder_for_the_package_is_made_when_missing(self):
        self.out = os.path.join(self.scratch, "server", "packages")
        self.assertEqual(self.made(), os.path.join(self.out, "app-new.tgz"))

    def test_plain_package_is_named_after_its_folder_and_unpacks_to_it(self):
        path = self.made()
        self.assertEqual(path, os.path.join(self.out, "app-new.tgz"))
        target = os.path.join(self.scratch, "target")
        os.mkdir(target)
        subprocess.run(["tar", "zxf", path], cwd=target, check=True)
        self.assertEqual(sorted(os.listdir(target)), ["hello.txt", "run"])
        self.assertEqual(contents(os.path.join(target, "run")), contents(os.path.join(EXAMPLE, "run")))

    def test_encrypted_package_is_the_plain_one_under_the_modules_key(self):
        plain, secret = self.made(), self.made("--encrypt")
        self.assertEqual(secret, os.path.join(self.out, "capp-new.tgz"))
        self.assertNotEqual(contents(plain), contents(secret))
        # Padding fills the last block, and is a whole block when there is nothing to fill.
        self.assertEqual(len(contents(secret)), len(contents(plain)) // 8 * 8 + 8)
        values = dict(line.split(" = ") for line in support.read(KEY_FILE).splitlines() if " = " in line)
        back = os.path.join(self.scratch, "back")
        subprocess.run(["openssl", "enc", "-d", "-bf-cbc", "-provider", "legacy", "-provider", "default",
                        "-K", values["key"], "-iv", values["iv"], "-in", secret, "-out", back], check=True)
        self.assertEqual(contents(back), contents(plain))

    def test_boards_own_key_needs_the_boards_own_key(self):
        own = os.path.join(self.scratch, "own.txt")
        support.write(own, "# ours\nkey = 00112233445566778899AABBCCDDEEFF\n iv=0123456789abcdef \n")
        path = self.made("--encrypt", "--key-file", own)
        self.assertEqual(support.run(MAKE_UPDATE, "--verify", "--key-file", own, path).returncode, 0)
        other = support.run(MAKE_UPDATE, "--verify", path)
        self.assertEqual(other.returncode, 1)
        self.assertIn(path, other.stderr)

    def test_verify_lists_what_is_inside(self):
        for words in ([], ["--encrypt"]):
            done = support.run(MAKE_UPDATE, "--verify", self.made(*words))
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertEqual([line.split()[1] for line in done.stdout.splitlines()], ["hello.txt", "run"])

    def test_verify_refuses_what_a_device_could_not_install(self):
        plain, secret = self.made(), self.made("--encrypt")
        for path in (plain, secret):
            whole = contents(path)
            for what, bad in (("half", whole[: len(whole) // 2]), ("not whole blocks", whole[:-3]), ("empty", b"")):
                with open(path, "wb") as file:
                    file.write(bad)
                done = support.run(MAKE_UPDATE, "--verify", path)
                self.assertEqual((done.returncode, done.stdout), (1, ""), f"{path} {what}")
                self.assertIn(path, done.stderr)
                self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)

    def test_verify_refuses_an_archive_that_leaves_its_folder(self):
        path = os.path.join(self.scratch, "app-evil.tgz")
        with tarfile.open(path, "w:gz") as archive:
            archive.add(os.path.join(self.folder, "run"), "run")
            archive.add(os.path.join(self.folder, "run"), "../etc/passwd")
        self.assertIn("leaves the folder", support.run(MAKE_UPDATE, "--verify", path).stderr)

    def test_same_folder_gives_the_same_package(self):
        first = contents(self.made("--encrypt", "--mtime", "1700000000"))
        copy = os.path.join(self.scratch, "copy", "new")
        os.mkdir(os.path.dirname(copy))
        # Made in another order, at another time, by someone with another umask.
        os.mkdir(copy)
        for name in ("run", "hello.txt"):
            shutil.copyfile(os.path.join(EXAMPLE, name), os.path.join(copy, name))
        os.chmod(os.path.join(copy, "run"), 0o700)
        os.chmod(os.path.join(copy, "hello.txt"), 0o600)
        again = self.made("--encrypt", folder=copy, env={**os.environ, "SOURCE_DATE_EPOCH": "1700000000"})
        self.assertEqual(contents(again), first)

    def test_everything_belongs_to_root_and_keeps_its_time(self):
        os.utime(os.path.join(self.folder, "run"), (1234567890, 1234567890))
        with tarfile.open(self.made()) as archive:
            entry = archive.getmember("run")
        self.assertEqual((entry.uid, entry.gid, entry.mtime, entry.mode), (0, 0, 1234567890, 0o755))

    def test_links_and_second_names_are_packed_as_what_they_are(self):
        os.symlink("hello.txt", os.path.join(self.folder, "link"))
        os.link(os.path.join(self.folder, "hello.txt"), os.path.join(self.folder, "second"))
        with tarfile.open(self.made()) as archive:
            self.assertEqual(archive.getmember("link").linkname, "hello.txt")
            self.assertEqual(archive.extractfile("second").read(), b"Hello from the update.\n")

    def test_what_cannot_be_a_package_is_refused(self):
        for name in ("with space", "a;b", "-x", "$(id)", "a/b", ""):
            self.refused(self.make("--name=" + name, folder=EXAMPLE if name else "/"), "name")
        os.mkfifo(os.path.join(self.folder, "pipe"))
        self.refused(self.make(), "only files, folders and links")
        os.remove(os.path.join(self.folder, "pipe"))
        os.remove(os.path.join(self.folder, "run"))
        self.refused(self.make(), 'has no script named "run"')
        self.refused(self.make(folder="/no/such/folder"), "no such folder")

    def test_bad_key_file_is_named(self):
        own = os.path.join(self.scratch, "own.txt")
        for text, reason in (("key = 0011\niv = 0123456789abcdef\n", "key must be 32"), ("", "key must be 32"),
                             ("key = 00112233445566778899aabbccddeeff\niv = xyz\n", "iv must be 16")):
            support.write(own, text)
            self.refused(self.make("--encrypt", "--key-file", own), f"{own}: {reason}")
        self.refused(self.make("--encrypt", "--key-file", "/no/file"), "cannot read the cipher key")

    def test_refused_write_leaves_nothing_behind(self):
        below_a_file = os.path.join(self.folder, "run", "out")
        done = support.run(MAKE_UPDATE, "-o", below_a_file, self.folder)
        self.refused(done, f"cannot write {below_a_file}")

    def test_archive_has_no_name_or_time_of_its_own(self):
        header = contents(self.made())[:10]
        self.assertEqual(header[3:8], bytes(5))
        self.assertTrue(gzip.decompress(contents(self.made())))


if __name__ == "__main__":
    unittest.main()
