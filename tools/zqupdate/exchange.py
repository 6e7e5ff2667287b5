"""One connection: reads a request, sends the service's answer as the faults say, writes a line for the log."""

import http.server
import os
import urllib.parse

from . import ToolError
from .faults import ABRUPT, Fault, read_fault
from .service import ACKNOWLEDGE_PATH, CHECK_PATH, PACKAGE_PATH, Reply
from .wire import Wait, pieces, text_answer

_LARGEST_BODY = 64 * 1024
_NONE = Fault("none", 0)


def say(line):
    """One line on standard output at once, without anything that a terminal would obey."""
    text = "".join(each if each.isprintable() else "?" for each in line[:1000])
    try:
        os.write(1, (text + "\n").encode(errors="replace"))
    except OSError:
        pass  # Nobody reads any more; the server serves on.


class Exchange(http.server.BaseHTTPRequestHandler):
    """A thread each. The server gives `service`, `packages_url` and `end`, an event that is set when it ends."""

    protocol_version = "HTTP/1.1"
    timeout = 30
    secure = False
    abrupt = False  # whether the connection is to end as by a crash, without a word of farewell

    def log_request(self, code="-", size="-"):
        pass  # _send writes the line.

    def log_message(self, format, *args):  # pylint: disable=redefined-builtin
        say(f"bad-request peer={self.client_address[0]} {format % args}")

    def do_GET(self):
        target = urllib.parse.urlsplit(self.path)
        service = self.server.service
        if self.secure and target.path == CHECK_PATH:
            mac = urllib.parse.parse_qs(target.query).get("mac", [""])[0]
            peer, reached_at = self.client_address[0], self.connection.getsockname()[0]
            self._answer("check", lambda fault: service.check(
                mac, peer, lambda scheme: self.server.packages_url(scheme, reached_at), fault.name))
        elif target.path.startswith(PACKAGE_PATH):
            self._answer("package", lambda fault: service.package(target.path))
        else:
            self._send(service.unknown(self.path), _NONE)

    def do_POST(self):
        service = self.server.service
        body = self._body()
        if body is None:
            self._send(Reply(text_answer("", "413 Content Too Large"), "too-large"), _NONE)
        elif self.secure and self.path == ACKNOWLEDGE_PATH:
            mac = self.headers.get("MAC-Addr", "")
            self._answer("acknowledge", lambda fault: service.acknowledge(body, mac))
        else:
            self._send(service.unknown(self.path), _NONE)

    def _body(self):
        length = self.headers.get("Content-Length", "0")
        if not length.isdigit() or len(length) > 9 or int(length) > _LARGEST_BODY:
            return None
        return self.rfile.read(int(length))

    def _answer(self, section, make):
        try:
            fault = read_fault(self.server.service.faults_file, section)
            reply = make(fault)
        except ToolError as error:
            fault = _NONE
            reply = Reply(text_answer("settings\n", "500 Internal Server Error", "text/plain"), f"error {error}")
        self._send(reply, fault)

    def _send(self, reply, fault):
        self.close_connection = True
        self.abrupt = fault.name in ABRUPT
        sent, end = 0, ""
        try:
            for piece in pieces(reply.answer, fault):
                if isinstance(piece, Wait):
                    if self.server.end.wait(piece.seconds):
                        return
                else:
                    self.wfile.write(piece)
                    sent += len(piece)
        except OSError as error:
            end = f" broken={type(error).__name__}"
        say(f"{reply.report} peer={self.client_address[0]} fault={fault.name} sent={sent}{end}")


class SecureExchange(Exchange):
    secure = True
