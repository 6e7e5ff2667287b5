"""The server's settings files, read again for each request so that an edit counts at once."""

import configparser
import os
import re
from typing import NamedTuple, Optional

from . import ToolError

TEMPLATE = """\
# What the update server offers. An edit counts from the next request on.

[server]
# Who gets which identity: "assign" gives each device a number of its own, a number gives all that one, "none" none.
deviceid = assign
# How devices fetch the packages: "http", or "https" from this server by the first name of its certificate.
packages = http

# A section for each package in the folder "packages" that is offered:
#
#   [capp-hello-update.tgz]
#   id = 1                   the update's number, which the device's acknowledgement names
#   forced = no              yes: devices install it without asking
#   comment = Hello          what users read
#   again = no               yes: offered also to devices that have acknowledged it
#   path = URL               in place of this server's own address for the package
"""


class Offer(NamedTuple):
    package: str
    id: int
    forced: bool
    comment: str
    again: bool
    path: Optional[str]


class Settings(NamedTuple):
    deviceid: str  # "assign", "none" or a number
    packages: str  # "http" or "https"
    offers: tuple


def read_ini(path, template):
    """The file's sections; made from the template when it is missing."""
    if not os.path.exists(path):
        with open(path, "w", encoding="utf-8") as file:
            file.write(template)
    # Who adds a section at the end that is there already means the last one.
    parser = configparser.ConfigParser(interpolation=None, delimiters=("=",), comment_prefixes=("#", ";"), strict=False)
    try:
        with open(path, encoding="utf-8") as file:
            parser.read_file(file)
    except (configparser.Error, UnicodeDecodeError) as error:
        raise ToolError(f"{path}: {str(error).splitlines()[0]}") from error
    return parser


def _check_keys(path, parser, section, known):
    for key in parser.options(section):
        if key not in known:
            raise ToolError(f"{path}: [{section}] has no key {key}; it has {', '.join(known)}")


def _flag(path, parser, section, key):
    try:
        return parser.getboolean(section, key, fallback=False)
    except ValueError as error:
        raise ToolError(f"{path}: [{section}] {key} is yes or no") from error


def _offer(path, parser, section):
    _check_keys(path, parser, section, ("id", "forced", "comment", "again", "path"))
    number = parser.get(section, "id", fallback="")
    if not re.fullmatch(r"[0-9]{1,9}", number):
        raise ToolError(f"{path}: [{section}] id is a number of up to nine digits")
    if "/" in section or section.startswith("."):
        raise ToolError(f"{path}: [{section}] is no package's name")
    # A comment of several lines is one line to the device.
    comment = " ".join(parser.get(section, "comment", fallback=section).split())
    return Offer(section, int(number), _flag(path, parser, section, "forced"), comment,
                 _flag(path, parser, section, "again"), parser.get(section, "path", fallback=None))


def read_settings(path):
    parser = read_ini(path, TEMPLATE)
    deviceid, packages = "assign", "http"
    offers = []
    for section in parser.sections():
        if section == "server":
            _check_keys(path, parser, section, ("deviceid", "packages"))
            deviceid = parser.get(section, "deviceid", fallback=deviceid)
            packages = parser.get(section, "packages", fallback=packages)
        else:
            offers.append(_offer(path, parser, section))
    if not re.fullmatch(r"assign|none|[0-9]{1,9}", deviceid):
        raise ToolError(f"{path}: deviceid is assign, none or a number")
    if packages not in ("http", "https"):
        raise ToolError(f"{path}: packages is http or https")
    return Settings(deviceid, packages, tuple(offers))
