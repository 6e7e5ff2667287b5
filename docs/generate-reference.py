#!/usr/bin/env python3
"""Writes docs/reference.md from the typings; --check says whether it is up to date instead."""

import os
import re
import sys

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path.insert(0, os.path.join(os.path.dirname(HERE), "types"))
import typings  # noqa: E402

TARGET = os.path.join(HERE, "reference.md")
HEAD = """\
# Reference

<!-- Made by docs/generate-reference.py from types/zqutil.d.ts: edit there. -->

"""


def anchor(title):
    """GitHub's name for a heading."""
    return re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-")


def prose(text, methods, interfaces):
    """Text of a comment as Markdown: names of methods and types become links."""
    text = re.sub(r"\{@link (\w+)\}", r"\1", text)
    text = re.sub(r"`(\w+)`", lambda match: f"[`{match[1]}`](#{match[1].lower()})" if match[1] in methods else match[0], text)
    return re.sub(r"(?<![\w`\[#])(ZQ\w+)\b",
                  lambda match: f"[{match[1]}](#{match[1].lower()})" if match[1] in interfaces else match[0], text)


def signature(method):
    """One line, or a parameter a line where that is too long."""
    line = method.signature()
    if len(line) <= 100:
        return line
    words = [f"{each.name}{'?' if each.optional else ''}: {each.type}" for each in method.parameters]
    return f"{method.name}(\n  " + ",\n  ".join(words) + f"\n): {method.result}"


def method_section(method, interfaces, link):
    lines = [f"### {method.name}", "", "```ts", signature(method), "```", "", link(method.about), ""]
    facts = [f"- `{each.name}`: {link(each.about)}" for each in method.parameters]
    if method.returns:
        facts.append(f"- gives {link(method.returns)}")
    if method.throws:
        facts.append(f"- throws {link(method.throws)}")
    if types := [name for name in re.findall(r"\bZQ\w+", method.signature()) if name in interfaces]:
        facts.append("- see " + ", ".join(link(name) for name in types))
    if facts:
        lines += [*facts, ""]
    return lines


def interface_section(interface, link):
    lines = [f"### {interface.name}", "", link(interface.about), ""]
    if interface.fields:
        lines += ["| property | type | |", "|---|---|---|"]
        for each in interface.fields:
            kind = each.type.replace("|", "\\|")
            lines.append(f"| `{each.name}` | `{kind}` | {link(each.about)} |")
    else:
        lines += ["| called | |", "|---|---|"]
        lines += [f"| `{each.signature().removesuffix(': void')}` | {link(each.about)} |" for each in interface.methods]
    return [*lines, ""]


def generate():
    device, interfaces = typings.read_typings()
    names = {method.name for method in device.methods}
    types = {interface.name for interface in interfaces}

    def link(text):
        return prose(text, names, types)

    lines = [typings.introduction(), "", device.about, "", "| group | methods |", "|---|---|"]
    groups = list(dict.fromkeys(method.group for method in device.methods))
    for group in groups:
        inside = [f"[{each.name}](#{each.name.lower()})" for each in device.methods if each.group == group]
        lines.append(f"| [{group}](#{anchor(group)}) | {', '.join(inside)} |")
    lines.append("")
    for group in groups:
        lines += [f"## {group}", ""]
        for method in device.methods:
            if method.group == group:
                lines += method_section(method, types, link)
    lines += ["## Listeners and results", ""]
    for interface in interfaces:
        lines += interface_section(interface, link)
    return HEAD + "\n".join(lines).rstrip("\n") + "\n"


def main():
    text = generate()
    if sys.argv[1:] == ["--check"]:
        with open(TARGET, encoding="utf-8") as file:
            if file.read() != text:
                sys.exit("docs/reference.md is not what the typings say: run docs/generate-reference.py")
        return
    with open(TARGET, "w", encoding="utf-8") as file:
        file.write(text)


if __name__ == "__main__":
    main()
