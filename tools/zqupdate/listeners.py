"""The server's two sockets: HTTPS for checks and acknowledgements, HTTP for packages."""

import socketserver
import ssl
import sys
import threading

from . import ToolError
from .exchange import Exchange, SecureExchange, say
from .faults import read_fault

_HANDSHAKE_SECONDS = 30


class Listener(socketserver.ThreadingTCPServer):
    """Serves on threads of its own until the process ends."""

    allow_reuse_address = True
    daemon_threads = True
    block_on_close = False
    request_queue_size = 128

    def __init__(self, address, handler, service, end, packages_url):
        try:
            super().__init__(address, handler)
        except OSError as error:
            raise ToolError(f"cannot listen on {address[0]}:{address[1]}: {error.strerror}") from error
        self.service = service
        self.end = end
        self.packages_url = packages_url

    @property
    def port(self):
        return self.server_address[1]

    def start(self):
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def handle_error(self, request, client_address):
        say(f"broken peer={client_address[0]} {sys.exc_info()[0].__name__}")


def _say_goodbye(connection):
    """Tells the client that the end is meant, so that it can tell it from a cut."""
    try:
        connection.settimeout(1)
        connection.unwrap()
    except (OSError, ValueError):
        pass  # It has left already.


class SecureListener(Listener):
    def __init__(self, address, service, end, packages_url, certificates):
        super().__init__(address, SecureExchange, service, end, packages_url)
        self._certificates = certificates

    def finish_request(self, request, client_address):
        """The handshake is made here, on the connection's own thread, so that a slow one delays nobody."""
        try:
            fault = read_fault(self.service.faults_file, "tls").name
        except ToolError as error:
            say(f"error {error}")
            return
        if fault == "refuse":
            say(f"handshake peer={client_address[0]} fault=refuse")
        elif fault == "stall":
            say(f"handshake peer={client_address[0]} fault=stall")
            self.end.wait(_HANDSHAKE_SECONDS)
        elif fault == "no-tls":
            SecureExchange(request, client_address, self)
        else:
            self._talk(request, client_address, fault)

    def _talk(self, request, client_address, fault):
        request.settimeout(_HANDSHAKE_SECONDS)
        try:
            connection = self._certificates.context(fault).wrap_socket(request, server_side=True)
        except (OSError, ValueError) as error:
            reason = error.reason if isinstance(error, ssl.SSLError) else type(error).__name__
            say(f"handshake peer={client_address[0]} fault={fault} failed={reason}")
            return
        with connection:
            exchange = SecureExchange(connection, client_address, self)
            if not exchange.abrupt:
                _say_goodbye(connection)
            if connection.selected_alpn_protocol() == "h2":
                say(f"handshake peer={client_address[0]} fault={fault} agreed=h2")


def plain_listener(address, service, end, packages_url):
    return Listener(address, Exchange, service, end, packages_url)
