"""What the server can do wrong, by name, and which of it is switched on at the moment."""

from typing import NamedTuple

from . import ToolError
from .settings import read_ini

TEMPLATE = """\
# What the server does wrong. An edit counts from the next request on; update-server --faults lists the names.

# The answer to "are there updates?".
[check]
fault = none
# How long the slow faults wait.
seconds = 1

# The answer to an acknowledgement.
[acknowledge]
fault = none

# A package's download.
[package]
fault = none

# The certificate and the handshake.
[tls]
fault = none
"""

# Every answer.
WIRE = {
    "none": "all is well",
    "slow": "waits SECONDS before it answers",
    "trickle": "sends a byte every SECONDS",
    "silence": "reads the request and hangs up",
    "cut-header": "hangs up in the middle of the header",
    "cut-body": "hangs up in the middle of the body",
    "long-length": "promises 1000 bytes more than it sends",
    "short-length": "promises half of what it sends",
    "two-lengths": "names two different lengths",
    "no-length": "names no length and hangs up at the end",
    "chunked": "sends the body in chunks",
    "bad-chunk": "sends a chunk whose length is no number",
    "chunked-and-length": "sends chunks and names a length too",
    "continue": 'sends "100 Continue" three times first',
    "redirect": "sends the client elsewhere (302)",
    "404": "knows nothing of it",
    "500": "breaks down",
    "nonsense": "answers with bytes that are no HTTP",
    "line-feeds": "ends the header's lines without carriage returns",
    "long-header": "sends a header line of 1 MiB",
}
# The document in the answer to a check.
DOCUMENT = {
    "huge": "an answer of 10 MiB",
    "elements": "an answer of 100,000 updates",
    "deep": "100,000 elements inside each other",
    "entities": "entities that would grow to gigabytes",
    "two-roots": "two root elements",
    "missing-attributes": "updates that lack an attribute each",
    "not-xml": "text that is no XML",
    "cut-document": "half a document, with the right length",
    "empty": "no bytes at all",
}
TLS = {
    "none": "all is well",
    "expired": "a certificate whose time is over",
    "wrong-name": "a certificate for another name",
    "unknown-ca": "a certificate of an authority that nobody knows",
    "old-version": "speaks TLS 1.1 at most",
    "h2": "agrees on HTTP/2 when offered it, and talks HTTP/1.1",
    "no-tls": "talks without TLS",
    "stall": "never answers the handshake",
    "refuse": "hangs up at once",
}
# After these the connection ends as when the server's machine lost its power.
ABRUPT = ("silence", "cut-header", "cut-body")
KNOWN = {"check": {**WIRE, **DOCUMENT}, "acknowledge": WIRE, "package": WIRE, "tls": TLS}


class Fault(NamedTuple):
    name: str
    seconds: float


def read_fault(path, section):
    parser = read_ini(path, TEMPLATE)
    name = parser.get(section, "fault", fallback="none")
    if name not in KNOWN[section]:
        raise ToolError(f"{path}: [{section}] knows no fault {name}; update-server --faults lists them")
    try:
        # The slow faults of any section may share the seconds of [check].
        default = parser.getfloat("check", "seconds", fallback=1.0)
        return Fault(name, parser.getfloat(section, "seconds", fallback=default))
    except ValueError as error:
        raise ToolError(f"{path}: [{section}] seconds is a number") from error


def described():
    """All names with what they do, as text for a person."""
    lines = []
    for title, faults in (("[check], [acknowledge] and [package]", WIRE), ("[check] alone", DOCUMENT), ("[tls]", TLS)):
        lines.append(title)
        lines += [f"  {name:20}{what}" for name, what in faults.items()]
    return "\n".join(lines)
