"""What the server answers to each request, over its folder; no sockets here."""

import os
import urllib.parse
from typing import NamedTuple

from . import documents
from .devices import Devices, identity, parse_acknowledgement
from .settings import read_settings
from .wire import Answer, text_answer

_CHUNK = 256 * 1024
CHECK_PATH, ACKNOWLEDGE_PATH, PACKAGE_PATH = "/zqapplog/updateReq", "/zqapplog", "/packages/"


class Reply(NamedTuple):
    answer: Answer
    report: str  # for the server's log, one line


def _not_found(report):
    return Reply(text_answer("not found\n", "404 Not Found", "text/plain"), report)


def _file_pieces(path, length):
    # As long as it was promised, also when the file changes meanwhile.
    with open(path, "rb") as file:
        while length > 0:
            piece = file.read(min(_CHUNK, length))
            if not piece:
                return
            length -= len(piece)
            yield piece


class Service:
    """Any thread."""

    def __init__(self, folder):
        self.settings_file = os.path.join(folder, "updates.ini")
        self.faults_file = os.path.join(folder, "faults.ini")
        self.packages = os.path.join(folder, "packages")
        os.makedirs(self.packages, exist_ok=True)
        self._devices = Devices(folder)
        self.check_settings()

    def check_settings(self):
        """Raises ToolError for a settings file that says something impossible."""
        return read_settings(self.settings_file)

    def _package(self, name):
        """The package's path, or None: a plain file directly in the folder of packages."""
        path = os.path.join(self.packages, name)
        if not name or "/" in name or name.startswith(".") or not os.path.isfile(path):
            return None
        return path

    def check(self, mac, peer, address, fault):
        """`address` gives, for "http" or "https", what stands before a package's name in its URL."""
        settings = self.check_settings()
        device = self._device(settings.deviceid, identity(mac, peer))
        updates, missing = [], []
        for offer in settings.offers:
            if device and not offer.again and self._devices.has_acknowledged(device, offer.id):
                continue
            if offer.path is None and self._package(offer.package) is None:
                missing.append(offer.package)
                continue
            path = offer.path or address(settings.packages) + urllib.parse.quote(offer.package)
            updates.append((offer.id, offer.forced, offer.comment, path))
        text = documents.faulty(fault, documents.document(device, updates))
        report = f"check device={'-' if device is None else device} updates={_numbers(updates)}"
        if missing:
            report += f" missing={','.join(missing)}"
        return Reply(text_answer(text), report)

    def _device(self, rule, who):
        if rule == "none":
            return None
        return self._devices.number(who) if rule == "assign" else int(rule)

    def acknowledge(self, body, mac):
        done = parse_acknowledgement(body)
        if done is None:
            return Reply(text_answer("malformed\n", "400 Bad Request", "text/plain"), "malformed-acknowledgement")
        self._devices.acknowledge(done, mac)
        return Reply(text_answer(""), f"acknowledged device={done.device} update={done.update}")

    def package(self, url_path):
        name = urllib.parse.unquote(url_path[len(PACKAGE_PATH):])
        path = self._package(name)
        if path is None:
            return _not_found(f"package name={name}")
        length = os.path.getsize(path)
        pieces = _file_pieces(path, length)
        return Reply(Answer("200 OK", "application/octet-stream", length, pieces), f"package name={name} bytes={length}")

    @staticmethod
    def unknown(url_path):
        return _not_found(f"unknown path={url_path}")


def _numbers(updates):
    return ",".join(str(update[0]) for update in updates) or "-"
