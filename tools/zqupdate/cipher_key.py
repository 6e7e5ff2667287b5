"""The cipher key of encrypted packages, read from the file that the module is built from."""

import os
import re
from typing import NamedTuple

from . import ToolError

_ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
DEFAULT_KEY_FILE = os.path.join(_ROOT, "class_modules", "ZQUtil", "update_key.txt")

# Hexadecimal digits: the key has 16 bytes, the initialisation vector 8.
_DIGITS = {"key": 32, "iv": 16}


class CipherKey(NamedTuple):
    key: str
    iv: str


def parse_key(text, where):
    """Lines of "key = DIGITS" and "iv = DIGITS"; the last of a name counts, as for the module's build."""
    found = {}
    for line in text.splitlines():
        match = re.fullmatch(r"[ \t]*(key|iv)[ \t]*=[ \t]*([0-9A-Fa-f]+)[ \t]*", line)
        if match:
            found[match[1]] = match[2].lower()
    for name, digits in _DIGITS.items():
        if len(found.get(name, "")) != digits:
            raise ToolError(f"{where}: {name} must be {digits} hexadecimal digits")
    return CipherKey(found["key"], found["iv"])


def read_key(path):
    try:
        with open(path, encoding="ascii", errors="replace") as file:
            return parse_key(file.read(), path)
    except OSError as error:
        raise ToolError(f"cannot read the cipher key: {error}") from error
