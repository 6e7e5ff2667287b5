"""Starts the tools as a person would, and talks to the server byte by byte."""

import atexit
import fcntl
import os
import shutil
import signal
import socket
import ssl
import subprocess
import sys
import tempfile
import threading
import time

TOOLS = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
ROOT = os.path.dirname(TOOLS)
# What the tests of all languages share.
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))
# Longer than anything here takes on a slow machine; reached only by a test that fails.
PATIENCE = 120


def run(*words, **options):
    return subprocess.run(words, capture_output=True, text=True, check=False, timeout=PATIENCE, **options)


def write(path, text):
    """Replaced whole: the server may be reading it."""
    with open(path + ".new", "w", encoding="utf-8") as file:
        file.write(text)
    os.replace(path + ".new", path)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def runs_on(device):
    """Whether a process of the device is left, whatever it is."""
    variable, path = b"ZQ_DEVICE=" + os.fsencode(device), os.fsencode(device)
    for process in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{process}/environ", "rb") as file:
                if variable in file.read().split(b"\0"):
                    return True
            with open(f"/proc/{process}/cmdline", "rb") as file:
                if path in file.read().split(b"\0"):
                    return True
        except OSError:
            pass  # It has just ended, or is somebody else's.
    return False


def cut_power(process, device):
    """Ends a device whose zqsim was started with a session of its own. Its system, which notices, is gone, too."""
    os.killpg(process.pid, signal.SIGKILL)
    process.wait()
    deadline = time.monotonic() + PATIENCE
    while runs_on(device):
        if time.monotonic() > deadline:
            raise AssertionError(f"something runs on {device} without power")
        time.sleep(0.01)
    # The last thing that goes of its system, after all that can be seen of it.
    with open(os.path.join(device, "var", "log", "zq-system.log"), "rb") as turn:
        while True:
            try:
                fcntl.flock(turn, fcntl.LOCK_EX | fcntl.LOCK_NB)
                return
            except BlockingIOError as error:
                if time.monotonic() > deadline:
                    raise AssertionError(f"the system of {device} goes on without power") from error
                time.sleep(0.01)


class Server:
    """An update-server in a folder of its own."""

    # What the first one made: the others start with a copy, since keys and certificates take their time.
    _tls = None
    _starting = threading.Lock()

    def __init__(self, *options, folder=None):
        with Server._starting:
            self._start(*options, folder=folder)

    def _start(self, *options, folder):
        self._scratch = None if folder else tempfile.mkdtemp(prefix="update-server-")
        self.folder = folder or self._scratch
        if self._scratch and Server._tls:
            shutil.copytree(Server._tls, os.path.join(self.folder, "tls"))
        self.process = subprocess.Popen([os.path.join(TOOLS, "update-server"), *options, self.folder],
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.said = {}
        for line in self.process.stdout:
            name, _, value = line.rstrip("\n").partition(" ")
            self.said[name] = value
            if name == "ready":
                break
        else:
            error = self.process.communicate(timeout=PATIENCE)[1]
            raise AssertionError(f"the server did not start: {error}")
        if Server._tls is None:
            Server._tls = tempfile.mkdtemp(prefix="update-server-tls-")
            atexit.register(shutil.rmtree, Server._tls)
            shutil.copytree(os.path.join(self.folder, "tls"), Server._tls, dirs_exist_ok=True)
        self.https, self.http = int(self.said["https-port"]), int(self.said["http-port"])
        self._lines, self._more = [], threading.Condition()
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            with self._more:
                self._lines.append(line.rstrip("\n"))
                self._more.notify_all()

    def next_line(self):
        """The next line of its log, awaited."""
        with self._more:
            if not self._more.wait_for(lambda: self._lines, PATIENCE):
                raise AssertionError("the server wrote no line")
            return self._lines.pop(0)

    def settings(self, text):
        write(os.path.join(self.folder, "updates.ini"), text)

    def fault(self, section, name, seconds=1):
        write(os.path.join(self.folder, "faults.ini"), f"[{section}]\nfault = {name}\nseconds = {seconds}\n")

    def package(self, name, content):
        with open(os.path.join(self.folder, "packages", name), "wb") as file:
            file.write(content)

    def end(self):
        """Its exit status after SIGTERM, or the one it ended with before. May be called again."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        status = self.process.wait(PATIENCE)
        self._reader.join(PATIENCE)
        self.process.stdout.close()
        self.process.stderr.close()
        if self._scratch:
            shutil.rmtree(self._scratch)
            self._scratch = None
        return status

    # What a device sends, and all that comes back until the server hangs up.

    def client_context(self):
        return ssl.create_default_context(cafile=self.said["ca-file"])

    def secure(self, request, context=None, name="localhost"):
        with socket.create_connection(("127.0.0.1", self.https), timeout=PATIENCE) as plain:
            with (context or self.client_context()).wrap_socket(plain, server_hostname=name) as connection:
                return _talk(connection, request)

    def agreed_protocol(self, context, patience=PATIENCE):
        """What a handshake without a request settles on."""
        with socket.create_connection(("127.0.0.1", self.https), timeout=patience) as plain:
            with context.wrap_socket(plain, server_hostname="localhost") as connection:
                return connection.selected_alpn_protocol()

    def plain(self, request, port=None):
        with socket.create_connection(("127.0.0.1", port or self.http), timeout=PATIENCE) as connection:
            return _talk(connection, request)

    def check(self, mac="localhost"):
        return self.secure(f"GET /zqapplog/updateReq?mac={mac} HTTP/1.1\r\nHost: localhost\r\n\r\n".encode())

    def acknowledge(self, body, mac="02:00:00:aa:bb:cc", length=None):
        return self.secure((f"POST /zqapplog HTTP/1.1\r\nContent-Type:application/x-www-form-urlencoded\r\n"
                            f"Host: localhost:{self.https}\r\nMAC-Addr: {mac}\r\n"
                            f"Content-Length: {len(body) if length is None else length}\r\n\r\n{body}").encode())

    def fetch(self, path):
        return self.plain(f"GET {path} HTTP/1.1\r\nHost: localhost\r\n\r\n".encode())


def _talk(connection, request):
    connection.sendall(request)
    received = b""
    while True:
        try:
            piece = connection.recv(65536)
        except (ConnectionResetError, ssl.SSLEOFError):
            return received
        if not piece:
            return received
        received += piece


def body_of(answer):
    return answer.partition(b"\r\n\r\n")[2]


def acknowledgement(device, update):
    return f'<xml version="1.0">\n<updateDone deviceId="{device}" updateId="{update}"/></xml>\n'
