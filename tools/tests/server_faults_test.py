"""update-server's faults: each is on the wire what its name says."""

import os
import re
import ssl
import sys
import time
import unittest
import warnings
from xml.etree import ElementTree

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))
sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
import support  # noqa: E402
from support import acknowledgement, body_of  # noqa: E402
from zqupdate import faults  # noqa: E402

PACKAGE = b"0123456789" * 500


def length_of(answer):
    return int(re.search(rb"\r\nContent-Length: (\d+)\r\n", answer)[1])


class FaultTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = support.Server()
        cls.server.package("app-x.tgz", PACKAGE)
        cls.server.settings("[app-x.tgz]\nid = 1\nforced = yes\n")

    @classmethod
    def tearDownClass(cls):
        cls.server.end()

    def package(self, fault, seconds=0.001):
        self.server.fault("package", fault, seconds)
        return self.server.fetch("/packages/app-x.tgz")

    def document(self, fault):
        self.server.fault("check", fault)
        answer = self.server.check()
        self.assertEqual(length_of(answer), len(body_of(answer)))
        return body_of(answer).decode()


class WireFaultTest(FaultTest):
    def test_cut_answers_end_early(self):
        self.assertEqual(self.package("silence"), b"")
        header = self.package("cut-header")
        self.assertTrue(header.startswith(b"HTTP/1.1 200") and b"\r\n\r\n" not in header, header)
        body = self.package("cut-body")
        self.assertEqual((length_of(body), len(body_of(body))), (5000, 2500))

    def test_lengths_lie(self):
        promised = {"long-length": 6000, "short-length": 2500}
        for fault, length in promised.items():
            answer = self.package(fault)
            self.assertEqual((length_of(answer), body_of(answer)), (length, PACKAGE))
        two = self.package("two-lengths")
        self.assertEqual(re.findall(rb"Content-Length: (\d+)", two), [b"5000", b"5001"])
        self.assertNotIn(b"Content-Length", self.package("no-length"))

    def test_chunks_hold_the_package(self):
        for fault in ("chunked", "chunked-and-length"):
            answer = self.package(fault)
            self.assertIn(b"Transfer-Encoding: chunked\r\n", answer)
            self.assertEqual(b"Content-Length" in answer, fault == "chunked-and-length")
            rest, whole = body_of(answer), b""
            while True:
                size, _, rest = rest.partition(b"\r\n")
                if int(size, 16) == 0:
                    break
                whole, rest = whole + rest[: int(size, 16)], rest[int(size, 16) + 2:]
            self.assertEqual((whole, rest), (PACKAGE, b"\r\n"))
        self.assertTrue(body_of(self.package("bad-chunk")).startswith(b"five\r\n"))

    def test_status_is_another(self):
        for fault, status in (("redirect", b"302 Found"), ("404", b"404 Not Found"),
                              ("500", b"500 Internal Server Error")):
            answer = self.package(fault)
            self.assertTrue(answer.startswith(b"HTTP/1.1 " + status + b"\r\n"), answer)
        self.assertIn(b"\r\nLocation: http://", self.package("redirect"))
        continued = self.package("continue")
        self.assertTrue(continued.startswith(b"HTTP/1.1 100 Continue\r\n\r\n" * 3 + b"HTTP/1.1 200 OK\r\n"))
        self.assertTrue(continued.endswith(PACKAGE))

    def test_header_is_odd(self):
        self.assertNotIn(b"HTTP", self.package("nonsense"))
        lines = self.package("line-feeds")
        self.assertNotIn(b"\r", lines)
        self.assertTrue(lines.endswith(b"\n\n" + PACKAGE))
        self.assertGreater(len(self.package("long-header").partition(b"\r\n\r\n")[0]), 1024 * 1024)

    def test_slow_answers_are_whole_in_the_end(self):
        start = time.monotonic()
        self.assertEqual(body_of(self.package("slow", 0.2)), PACKAGE)
        self.assertGreaterEqual(time.monotonic() - start, 0.2)
        self.server.package("app-x.tgz", b"few")
        self.assertEqual(body_of(self.package("trickle", 0.0001)), b"few")
        self.server.package("app-x.tgz", PACKAGE)

    def test_faults_of_one_kind_of_request_leave_the_others_alone(self):
        self.server.fault("package", "404")
        self.assertIn(b" 200 OK", self.server.check())
        self.server.fault("acknowledge", "500")
        self.assertIn(b" 200 OK", self.server.fetch("/packages/app-x.tgz"))
        self.assertIn(b" 500 ", self.server.acknowledge(acknowledgement(5, 5)))

    def test_every_fault_of_a_check_is_served_and_logged(self):
        for name in (*faults.WIRE, *faults.DOCUMENT):
            self.server.fault("check", name, 0)
            self.server.check(mac=f"02:00:00:00:00:{len(name):02x}")
            # The lines of the tests before come first; the one for this request follows, or the wait ends in a failure.
            line = rf"check device=\d+ updates=\S+ peer=127\.0\.0\.1 fault={name} sent="
            while not re.match(line, self.server.next_line()):
                pass


class DocumentFaultTest(FaultTest):
    def test_good_document_names_the_update(self):
        self.assertIn('<update id="1" forced="true"', self.document("none"))

    def test_huge_answers_are_well_formed(self):
        text = self.document("huge")
        self.assertGreater(len(text), 10 * 1024 * 1024)
        self.assertEqual(len(ElementTree.fromstring(text).findall("update")), 1)
        self.assertEqual(len(ElementTree.fromstring(self.document("elements")).findall("update")), 100_000)
        self.assertEqual(self.document("deep").count("<a>"), 100_000)

    def test_missing_attributes_lack_one_each(self):
        updates = ElementTree.fromstring(self.document("missing-attributes")).findall("update")
        self.assertEqual([sorted({"id", "forced", "comment", "path"} - set(each.attrib)) for each in updates],
                         [["id"], ["forced"], ["comment"], ["path"]])

    def test_what_is_no_document_cannot_be_parsed(self):
        for fault in ("two-roots", "not-xml", "cut-document", "empty"):
            with self.assertRaises(ElementTree.ParseError, msg=fault):
                ElementTree.fromstring(self.document(fault))

    def test_entities_would_grow(self):
        text = self.document("entities")
        self.assertEqual(text.count("<!ENTITY"), 10)
        self.assertIn('comment="&e9;"', text)
        self.assertLess(len(text), 2000)


class TlsFaultTest(FaultTest):
    def check(self, fault, context=None):
        self.server.fault("tls", fault)
        context = context or self.server.client_context()
        return self.server.secure(b"GET /zqapplog/updateReq?mac=x HTTP/1.1\r\n\r\n", context)

    def test_bad_certificates_are_bad_in_their_own_way(self):
        for fault, reason in (("expired", "certificate has expired"), ("wrong-name", "Hostname mismatch"),
                              ("unknown-ca", "unable to get local issuer certificate")):
            with self.assertRaises(ssl.SSLCertVerificationError) as caught:
                self.check(fault)
            self.assertIn(reason, str(caught.exception))
        self.assertIn(b" 200 OK", self.check("none"))

    def test_old_version_is_refused_by_a_client_of_today_and_works_for_one_of_then(self):
        modern = self.server.client_context()
        modern.minimum_version = ssl.TLSVersion.TLSv1_2
        with self.assertRaises(ssl.SSLError):
            self.check("old-version", modern)
        old = self.server.client_context()
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", DeprecationWarning)
            old.minimum_version = ssl.TLSVersion.TLSv1_1
        old.set_ciphers("DEFAULT:@SECLEVEL=0")
        self.assertIn(b" 200 OK", self.check("old-version", old))

    def test_h2_is_agreed_on_with_who_offers_it(self):
        for fault, agreed in (("h2", "h2"), ("none", "http/1.1")):
            context = self.server.client_context()
            context.set_alpn_protocols(["h2", "http/1.1"])
            self.server.fault("tls", fault)
            self.assertEqual(self.server.agreed_protocol(context), agreed)
        self.assertIn(b" 200 OK", self.check("h2"))

    def test_no_tls_talks_plainly(self):
        self.server.fault("tls", "no-tls")
        request = b"GET /zqapplog/updateReq?mac=x HTTP/1.1\r\n\r\n"
        self.assertIn(b" 200 OK", self.server.plain(request, self.server.https))
        with self.assertRaises(ssl.SSLError):
            self.check("no-tls")

    def test_no_handshake_comes_about(self):
        with self.assertRaises(OSError):
            self.check("refuse")
        self.server.fault("tls", "stall")
        with self.assertRaises(OSError):
            self.server.agreed_protocol(self.server.client_context(), patience=0.3)


class ListedFaultsTest(unittest.TestCase):
    def test_list_names_them_all(self):
        text = support.run(os.path.join(support.TOOLS, "update-server"), "--faults").stdout
        for section in faults.KNOWN.values():
            for name, what in section.items():
                self.assertRegex(text, rf"(?m)^  {name} +{re.escape(what)}$")


if __name__ == "__main__":
    unittest.main()
