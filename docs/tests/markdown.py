"""What the tests look at in Markdown files: headings, links, snippets of script."""

import os
import re
import subprocess
from typing import NamedTuple

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))


class Snippet(NamedTuple):
    file: str
    line: int
    code: str
    options: dict  # from a comment before it: <!-- device: tablet --> and so on


def files():
    """Every Markdown file of the repository, as paths inside it; without git, those on disk."""
    done = subprocess.run(["git", "-C", ROOT, "ls-files", "--cached", "--others", "--exclude-standard", "*.md"],
                          capture_output=True, text=True, check=False)
    if done.returncode == 0 and done.stdout:
        return sorted(path for path in done.stdout.splitlines() if os.path.exists(os.path.join(ROOT, path)))
    found = []
    for folder, folders, names in os.walk(ROOT):
        folders[:] = [name for name in folders if not name.startswith((".", "build"))]
        found += [os.path.relpath(os.path.join(folder, name), ROOT) for name in names if name.endswith(".md")]
    return sorted(found)


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def without_code(text):
    """The text with what stands in blocks and spans of code blanked out, line for line."""
    text = re.sub(r"^```.*?^```", lambda match: "\n" * match[0].count("\n"), text, flags=re.S | re.M)
    text = re.sub(r"^    .*$", "", text, flags=re.M)
    return re.sub(r"`[^`\n]*`", "code", text)


def anchors(path):
    """The names that headings go by in links."""
    names = []
    for title in re.findall(r"^#+ (.*)$", re.sub(r"^```.*?^```", "", read(path), flags=re.S | re.M), re.M):
        name = re.sub(r"[^\w\- ]", "", title.strip().lower()).replace(" ", "-")
        count = sum(1 for other in names if other == name or re.fullmatch(re.escape(name) + r"-\d+", other))
        names.append(f"{name}-{count}" if count else name)
    return names


def links(path):
    """(line, target) of every link."""
    for number, line in enumerate(without_code(read(path)).splitlines(), 1):
        for target in re.findall(r"\]\(([^)\s]+)\)", line):
            yield number, target


def snippets(path):
    """The blocks of script, in order."""
    pattern = re.compile(r"(?P<comment>(?:^<!-- [^\n]* -->\n)*)^```js\n(?P<code>.*?)^```$", re.S | re.M)
    text = read(path)
    for match in pattern.finditer(text):
        options = dict(re.findall(r"^<!-- (\w[\w ]*): (.*) -->$", match["comment"], re.M))
        yield Snippet(path, text.count("\n", 0, match.start("code")) + 1, match["code"], options)
