"""Reads zqutil.d.ts as far as its own style goes: the class's methods with their comments, the interfaces."""

import os
import re
from typing import NamedTuple

HERE = os.path.dirname(os.path.realpath(__file__))
TYPINGS = os.path.join(HERE, "zqutil.d.ts")

_COMMENT = r"/\*\*(?P<comment>(?:(?!\*/).)*)\*/\s*"
_METHOD = re.compile(_COMMENT + r"(?P<name>\w+)(?P<optional>\??)\((?P<parameters>[^)]*)\):\s*(?P<result>[^;]+);", re.S)
_GROUP = re.compile(r"^  // == (?P<title>.+) ==$", re.M)
_BLOCK = re.compile(_COMMENT + r"(?P<kind>interface|declare class) (?P<name>\w+) \{(?P<body>.*?)^\}", re.S | re.M)
_FIELD = re.compile(r"(?:" + _COMMENT + r")?^  (?P<name>\w+): (?P<type>[^;]+);", re.S | re.M)


class Parameter(NamedTuple):
    name: str
    type: str
    optional: bool
    about: str


class Method(NamedTuple):
    name: str
    group: str
    parameters: tuple
    result: str
    about: str
    returns: str
    throws: str

    def signature(self):
        words = [f"{each.name}{'?' if each.optional else ''}: {each.type}" for each in self.parameters]
        return f"{self.name}({', '.join(words)}): {self.result}"


class Field(NamedTuple):
    name: str
    type: str
    about: str


class Interface(NamedTuple):
    name: str
    about: str
    fields: tuple
    methods: tuple


def _text(comment):
    """A comment without its stars: paragraphs of one line each, and the tags."""
    lines = [re.sub(r"^\s*\*? ?", "", line).strip() for line in (comment or "").splitlines()]
    joined = "\n".join(lines).strip()
    tagged = re.split(r"\n?^@", joined, flags=re.M)
    flow = [re.sub(r"\s*\n(?!\n)\s*", " ", part.replace("\n\n", "\0")).replace("\0", "\n\n").strip() for part in tagged]
    return flow[0], [tuple(part.split(" ", 1)) for part in flow[1:]]


def _parameters(text, tags):
    about = dict(value.split(" ", 1) for tag, value in tags if tag == "param")
    parameters = []
    for part in filter(None, (each.strip() for each in text.split(","))):
        name, kind = part.split(":", 1)
        parameters.append(Parameter(name.rstrip("?"), kind.strip(), name.endswith("?"), about.pop(name.rstrip("?"), "")))
    if about:
        raise ValueError(f"comment on parameters that do not exist: {', '.join(about)}")
    return tuple(parameters)


def _methods(body):
    groups = [(match.start(), match["title"]) for match in _GROUP.finditer(body)]
    methods = []
    for match in _METHOD.finditer(body):
        about, tags = _text(match["comment"])
        group = max((each for each in groups if each[0] < match.start()), default=(0, ""))[1]
        single = dict(tags)
        methods.append(Method(match["name"], group, _parameters(match["parameters"], tags), " ".join(match["result"].split()),
                              about, single.get("returns", ""), single.get("throws", "")))
    return tuple(methods)


def read_typings(path=TYPINGS):
    """The class ZQUtil, and the interfaces in their order."""
    with open(path, encoding="utf-8") as file:
        text = file.read()
    interfaces = []
    device = None
    for match in _BLOCK.finditer(text):
        about, _ = _text(match["comment"])
        methods = _methods(match["body"])
        # Functions are no fields.
        fields = tuple(Field(each["name"], each["type"], _text(each["comment"])[0])
                       for each in _FIELD.finditer(match["body"]) if "(" not in each["type"]) if not methods else ()
        made = Interface(match["name"], about, fields, methods)
        if match["kind"] == "interface":
            interfaces.append(made)
        else:
            device = made
    return device, tuple(interfaces)


def introduction(path=TYPINGS):
    """The paragraphs at the top of the file."""
    with open(path, encoding="utf-8") as file:
        lines = []
        for line in file:
            if not line.startswith("//"):
                break
            lines.append(line[2:].removeprefix(" ").rstrip("\n"))
    return "\n".join(lines)
