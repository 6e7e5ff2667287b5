"""Who the devices are and what they have acknowledged: two text files that only grow."""

import os
import re
import threading
import time
from typing import NamedTuple, Optional

_MAC = re.compile(r"([0-9a-fA-F]{2}[:-]){5}[0-9a-fA-F]{2}")
# The opening line is what devices send: an element named xml, not an XML declaration.
_ACKNOWLEDGEMENT = re.compile(
    rb'<xml version="1\.0">\s*<updateDone\s+(?:deviceId="(\d{1,9})"\s+updateId="(\d{1,9})"'
    rb'|updateId="(\d{1,9})"\s+deviceId="(\d{1,9})")\s*(?:/>|>\s*</updateDone>)\s*</xml>\s*')


class Acknowledgement(NamedTuple):
    device: int
    update: int


def parse_acknowledgement(body) -> Optional[Acknowledgement]:
    match = _ACKNOWLEDGEMENT.fullmatch(body)
    if match is None:
        return None
    device, update = (match[1], match[2]) if match[1] is not None else (match[4], match[3])
    return Acknowledgement(int(device), int(update))


def identity(mac, peer):
    """What a device is told apart by: its MAC address where the request names it, or its network address. (Devices
    of this family send the server's own name in place of their MAC address.)"""
    return mac.lower().replace("-", ":") if _MAC.fullmatch(mac) else peer


def _append(path, line):
    """Whole lines only, on disk when this returns."""
    descriptor = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_APPEND, 0o644)
    try:
        os.write(descriptor, line.encode())
        os.fsync(descriptor)
    finally:
        os.close(descriptor)


def _lines(path):
    try:
        with open(path, encoding="utf-8") as file:
            return file.read().splitlines()
    except FileNotFoundError:
        return []


class Devices:
    """Any thread."""

    def __init__(self, folder):
        self._ids_file = os.path.join(folder, "devices.txt")
        self._log_file = os.path.join(folder, "acknowledgements.log")
        self._lock = threading.Lock()
        self._ids = {}
        for line in _lines(self._ids_file):
            match = re.fullmatch(r"([0-9]+) (\S+)", line)
            if match:
                self._ids[match[2]] = int(match[1])
        self._done = set()
        for line in _lines(self._log_file):
            match = re.search(r" device=([0-9]+) update=([0-9]+) ", line)
            if match:
                self._done.add(Acknowledgement(int(match[1]), int(match[2])))

    def number(self, who):
        """The device's number, from 1; a new one for a device never seen before."""
        with self._lock:
            if who not in self._ids:
                number = max(self._ids.values(), default=0) + 1
                _append(self._ids_file, f"{number} {who}\n")
                self._ids[who] = number
            return self._ids[who]

    def acknowledge(self, done, mac):
        # A fixed width and one line each, whatever the device sent as its address.
        address = mac.lower() if _MAC.fullmatch(mac) else "-"
        stamp = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())
        with self._lock:
            _append(self._log_file, f"{stamp} device={done.device} update={done.update} mac={address}\n")
            self._done.add(done)

    def has_acknowledged(self, device, update):
        with self._lock:
            return Acknowledgement(device, update) in self._done
