"""update-server: what it answers, remembers, refuses, and how it starts and ends."""

import concurrent.futures
import http.client
import os
import re
import socket
import ssl
import sys
import tempfile
import time
import unittest
from xml.etree import ElementTree

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))
import support  # noqa: E402
from support import acknowledgement, body_of  # noqa: E402

UPDATE_SERVER = os.path.join(support.TOOLS, "update-server")
TWO_OFFERS = """\
[server]
deviceid = assign
[app-one.tgz]
id = 7
comment = One & "only" <it>
[capp two.tgz]
id = 3
forced = yes
comment = Two
"""


class UpdateServerTest(unittest.TestCase):
    def setUp(self):
        self.server = support.Server()
        self.addCleanup(self.server.end)

    def offer(self, settings=TWO_OFFERS):
        self.server.package("app-one.tgz", b"first")
        self.server.package("capp two.tgz", b"second")
        self.server.settings(settings)

    def document(self, **options):
        answer = self.server.check(**options)
        self.assertTrue(answer.startswith(b"HTTP/1.1 200 OK\r\n"), answer[:200])
        length = int(re.search(rb"\r\nContent-Length: (\d+)\r\n", answer)[1])
        self.assertEqual(length, len(body_of(answer)))
        return ElementTree.fromstring(body_of(answer))

    def offered(self, **options):
        return [int(each.get("id")) for each in self.document(**options).iter("update")]

    def test_check_lists_the_offers_in_the_settings_order(self):
        self.offer()
        root = self.document()
        self.assertEqual([(each.tag, dict(each.attrib)) for each in root], [
            ("deviceid", {"yourId": "1"}),
            ("update", {"id": "7", "forced": "false", "comment": 'One & "only" <it>',
                        "path": f"http://127.0.0.1:{self.server.http}/packages/app-one.tgz"}),
            ("update", {"id": "3", "forced": "true", "comment": "Two",
                        "path": f"http://127.0.0.1:{self.server.http}/packages/capp%20two.tgz"})])
        self.assertRegex(self.server.next_line(), r"^check device=1 updates=7,3 peer=127\.0\.0\.1 fault=none sent=\d+$")

    def test_offered_package_is_there_byte_for_byte(self):
        self.server.package("big.tgz", bytes(range(256)) * 4096)
        answer = self.server.fetch("/packages/big.tgz")
        self.assertEqual(body_of(answer), bytes(range(256)) * 4096)
        self.assertIn(b"\r\nContent-Length: 1048576\r\n", answer)
        self.assertRegex(self.server.next_line(), r"^package name=big\.tgz bytes=1048576 peer=127\.0\.0\.1 fault=none ")

    def test_packages_folder_is_not_left(self):
        for path in ("/packages/../updates.ini", "/packages/%2e%2e/updates.ini", "/packages/..%2fupdates.ini",
                     "/packages/", "/packages/.lock", "/updates.ini", "/packages/%00", "/"):
            with self.subTest(path=path):
                self.assertTrue(self.server.fetch(path).startswith(b"HTTP/1.1 404 "), path)

    def test_checks_and_acknowledgements_want_tls(self):
        for request in (b"GET /zqapplog/updateReq?mac=x HTTP/1.1\r\n\r\n",
                        b"POST /zqapplog HTTP/1.1\r\nContent-Length: 0\r\n\r\n"):
            self.assertTrue(self.server.plain(request).startswith(b"HTTP/1.1 404 "))

    def test_packages_can_be_fetched_by_https(self):
        self.offer("[server]\npackages = https\n[app-one.tgz]\nid = 7\n")
        path = self.document().find("update").get("path")
        self.assertEqual(path, f"https://localhost:{self.server.https}/packages/app-one.tgz")
        self.assertEqual(body_of(self.server.secure(b"GET /packages/app-one.tgz HTTP/1.1\r\n\r\n")), b"first")

    def test_address_of_the_packages_can_be_another_server(self):
        other = support.Server("--packages-url", "http://packages.invalid/new/")
        self.addCleanup(other.end)
        other.package("app-one.tgz", b"first")
        other.settings("[app-one.tgz]\nid = 7\n")
        self.assertIn(b'path="http://packages.invalid/new/app-one.tgz"', other.check())

    def test_package_that_is_missing_is_not_offered(self):
        self.server.settings(TWO_OFFERS)
        self.assertEqual(self.offered(), [])
        self.assertIn(" missing=app-one.tgz,capp two.tgz ", self.server.next_line())

    def test_address_of_a_package_can_be_elsewhere(self):
        self.server.settings("[x.tgz]\nid=1\npath = http://other.invalid/a b/;x.tgz\n")
        self.assertEqual(self.document().find("update").get("path"), "http://other.invalid/a b/;x.tgz")

    def test_devices_get_numbers_of_their_own_and_keep_them(self):
        def number(mac):
            return self.document(mac=mac).find("deviceid").get("yourId")

        asking = ("02:00:00:00:00:01", "updates.invalid", "02-00-00-00-00-0A", "02:00:00:00:00:01", "02:00:00:00:00:0a",
                  "another.invalid")
        self.assertEqual([number(mac) for mac in asking], ["1", "2", "3", "1", "3", "2"])
        self.assertEqual(support.read(os.path.join(self.server.folder, "devices.txt")),
                         "1 02:00:00:00:00:01\n2 127.0.0.1\n3 02:00:00:00:00:0a\n")

    def test_identity_can_be_fixed_or_withheld(self):
        self.server.settings("[server]\ndeviceid = 42\n")
        self.assertEqual(self.document().find("deviceid").get("yourId"), "42")
        self.server.settings("[server]\ndeviceid = none\n")
        self.assertIsNone(self.document().find("deviceid"))

    def test_acknowledgement_becomes_a_line(self):
        answer = self.server.acknowledge(acknowledgement(34, 12))
        self.assertTrue(answer.startswith(b"HTTP/1.1 200 OK\r\n"))
        self.assertEqual(body_of(answer), b"")
        self.assertRegex(support.read(os.path.join(self.server.folder, "acknowledgements.log")),
                         r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ device=34 update=12 mac=02:00:00:aa:bb:cc\n$")
        self.assertRegex(self.server.next_line(), r"^acknowledged device=34 update=12 peer=127\.0\.0\.1 ")

    def test_acknowledgements_form_is_checked(self):
        good = acknowledgement(1, 2)
        accepted = [good, good.replace("/>", "></updateDone>"),
                    good.replace('deviceId="1" updateId="2"', 'updateId="2" deviceId="1"'), good.replace("/></xml>", "/>\n</xml>")]
        bad = ["", "x", good[:-10], good + "x", good.replace("<xml", "<?xml"), good.replace("1.0", "1.1"),
               good.replace('"2"', '"two"'), good.replace('"2"', '""'), good.replace('"2"', '"-2"'),
               good.replace('"2"', '"12345678901"'), good.replace("updateDone", "updatedone"), good + good,
               good.replace(' updateId="2"', "")]
        for body in accepted:
            self.assertTrue(self.server.acknowledge(body).startswith(b"HTTP/1.1 200 "), body)
        for body in bad:
            self.assertTrue(self.server.acknowledge(body).startswith(b"HTTP/1.1 400 "), body)
        lines = support.read(os.path.join(self.server.folder, "acknowledgements.log")).splitlines()
        self.assertEqual([line.split(" ", 1)[1] for line in lines],
                         ["device=1 update=2 mac=02:00:00:aa:bb:cc"] * len(accepted))

    def test_hostile_address_reaches_no_log(self):
        self.server.acknowledge(acknowledgement(1, 2), mac="evil device=9 update=9 ")
        self.assertRegex(support.read(os.path.join(self.server.folder, "acknowledgements.log")),
                         r"^\S+ device=1 update=2 mac=-\n$")

    def test_body_that_is_too_large_or_has_no_number_is_refused(self):
        for length in ("70000", "99999999999", "-1", "x"):
            self.assertTrue(self.server.acknowledge("", length=length).startswith(b"HTTP/1.1 413 "), length)

    def test_what_a_device_has_is_offered_no_more(self):
        self.offer()
        self.assertEqual(self.offered(), [7, 3])
        self.server.acknowledge(acknowledgement(1, 3))
        self.assertEqual(self.offered(), [7])
        self.assertEqual(self.offered(mac="02:00:00:00:00:02"), [7, 3])
        self.offer(TWO_OFFERS + "again = yes\n")
        self.assertEqual(self.offered(), [7, 3])

    def test_numbers_and_acknowledgements_survive_a_restart(self):
        self.offer()
        self.offered(mac="02:00:00:00:00:01")
        self.offered(mac="02:00:00:00:00:02")
        self.server.acknowledge(acknowledgement(2, 7))
        ca = support.read(self.server.said["ca-file"])
        self.server.process.terminate()
        self.server.process.wait(support.PATIENCE)
        again = support.Server(folder=self.server.folder)
        self.addCleanup(again.end)
        self.assertEqual(support.read(again.said["ca-file"]), ca)
        root = ElementTree.fromstring(body_of(again.check(mac="02:00:00:00:00:02")))
        self.assertEqual([dict(each.attrib).get("yourId", each.get("id")) for each in root], ["2", "3"])

    def test_edit_that_makes_no_sense_breaks_the_answer_and_names_itself(self):
        for text, reason in (("[app-x.tgz]\nid = two\n", "id is a number"),
                             ("[app-x.tgz]\nid = 1\nforce = yes\n", "no key force"),
                             ("[app-x.tgz]\nid = 1\nforced = maybe\n", "forced is yes or no"),
                             ("[../x]\nid = 1\n", "no package's name"),
                             ("[server]\ndeviceid = maybe\n", "deviceid is"),
                             ("[server]\npackages = ftp\n", "packages is http or https"),
                             ("no section\n", "no section")):
            self.server.settings(text)
            self.assertTrue(self.server.check().startswith(b"HTTP/1.1 500 "), text)
            self.assertIn(reason, self.server.next_line())
        self.offer()
        self.assertEqual(self.offered(), [7, 3])

    def test_of_two_sections_with_one_name_the_later_lines_count(self):
        self.offer(TWO_OFFERS + "[server]\ndeviceid = 5\n[server]\ndeviceid = 9\n")
        self.assertEqual(self.offered(), [7, 3])
        self.assertIn(b'yourId="9"', body_of(self.server.check()))

    def test_server_with_senseless_settings_does_not_start(self):
        with tempfile.TemporaryDirectory() as folder:
            support.write(os.path.join(folder, "faults.ini"), "[check]\nfault = typo\n")
            done = support.run(UPDATE_SERVER, folder)
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertRegex(done.stderr, r"^update-server: .*faults\.ini: \[check\] knows no fault typo; .*\n$")

    def test_two_servers_do_not_share_a_folder(self):
        done = support.run(UPDATE_SERVER, self.server.folder)
        self.assertEqual(done.returncode, 1)
        self.assertIn("another update-server runs in", done.stderr)

    def test_taken_port_is_named(self):
        with tempfile.TemporaryDirectory() as folder:
            done = support.run(UPDATE_SERVER, "--port", str(self.server.https), folder)
            self.assertEqual(done.returncode, 1)
            self.assertIn(f"cannot listen on 127.0.0.1:{self.server.https}", done.stderr)

    def test_certificate_follows_the_names_and_the_authority_stays(self):
        ca = support.read(self.server.said["ca-file"])
        self.server.process.terminate()
        self.server.process.wait(support.PATIENCE)
        again = support.Server("--name", "updates.example", folder=self.server.folder)
        self.addCleanup(again.end)
        self.assertEqual(support.read(again.said["ca-file"]), ca)
        request = b"GET /zqapplog/updateReq HTTP/1.1\r\n\r\n"
        self.assertIn(b" 200 OK", again.secure(request, name="updates.example"))
        with self.assertRaises(ssl.SSLCertVerificationError):
            again.secure(request, name="localhost")

    def test_private_keys_are_private(self):
        folder = os.path.join(self.server.folder, "tls")
        keys = [name for name in os.listdir(folder) if name.endswith(".key")]
        self.assertIn("ca.key", keys)
        for name in keys:
            self.assertEqual(os.stat(os.path.join(folder, name)).st_mode & 0o077, 0, name)

    def test_crowd_of_devices_is_served(self):
        self.offer()
        self.server.package("big.tgz", b"x" * 1_000_000)

        def device(number):
            mac = f"02:00:00:00:01:{number:02x}"
            identity = ElementTree.fromstring(body_of(self.server.check(mac=mac))).find("deviceid").get("yourId")
            size = len(body_of(self.server.fetch("/packages/big.tgz")))
            self.server.acknowledge(acknowledgement(identity, 7))
            return int(identity), size

        with concurrent.futures.ThreadPoolExecutor(24) as crowd:
            seen = list(crowd.map(device, range(48)))
        self.assertEqual(sorted(seen), [(number, 1_000_000) for number in range(1, 49)])
        lines = support.read(os.path.join(self.server.folder, "acknowledgements.log")).splitlines()
        acknowledged = sorted(int(re.search(r"device=(\d+) update=7 ", line)[1]) for line in lines)
        self.assertEqual(acknowledged, list(range(1, 49)))

    def test_silent_client_delays_nobody(self):
        with socket.create_connection(("127.0.0.1", self.server.https)), socket.create_connection(("127.0.0.1", self.server.http)):
            self.assertEqual(self.offered(), [])

    def test_ends_with_status_0_in_the_middle_of_a_slow_answer(self):
        self.server.fault("check", "slow", seconds=3600)
        connection = http.client.HTTPSConnection("localhost", self.server.https, context=self.server.client_context(), timeout=60)
        connection.request("GET", "/zqapplog/updateReq?mac=x")
        # Not before the request is being answered: the server has taken a number for the device then.
        deadline = time.monotonic() + support.PATIENCE
        while not os.path.exists(os.path.join(self.server.folder, "devices.txt")) and time.monotonic() < deadline:
            time.sleep(0.01)
        start = time.monotonic()
        self.assertEqual(self.server.end(), 0)
        self.assertLess(time.monotonic() - start, 30)
        connection.close()

    def test_help_names_the_files(self):
        text = support.run(UPDATE_SERVER, "--help").stdout
        for word in ("updates.ini", "faults.ini", "acknowledgements.log", "ZQ_CA_FILE", "--http-port", "https-port"):
            self.assertIn(word, text)
        self.assertEqual(support.run(UPDATE_SERVER).returncode, 2)


if __name__ == "__main__":
    unittest.main()
