#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a build folder, two at a time.

A source that was found clean is not looked at again until it, a header that it includes, its compile command,
.clang-tidy or the tool changes: its preprocessed text is hashed and the hash kept in the user's cache, where another
clone of the same sources finds it too.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import subprocess
import sys


def is_product(source: str) -> bool:
    """Tests, benchmarks and fuzz targets are left to the compilers' warnings: their frameworks' macros trip checks."""
    parts = pathlib.Path(source).relative_to(pathlib.Path.cwd()).parts
    return not {"tests", "bench", "fuzz"} & set(parts)


def compile_words(command: dict) -> list[str]:
    """The compiler's command line, without what says where the output goes."""
    words = shlex.split(command["command"])
    if os.path.basename(words[0]) == "ccache":
        words = words[1:]
    output = words.index("-o")
    del words[output : output + 2]
    return [word for word in words if word != "-c"]


def preprocessed_hash(command: dict, config: bytes) -> str:
    words = compile_words(command) + ["-E", "-P"]
    text = subprocess.run(words, cwd=command["directory"], capture_output=True, check=True).stdout
    seen = config + command["command"].encode() + text
    # Where the clone lies makes no difference.
    return hashlib.sha256(seen.replace(os.getcwd().encode(), b".")).hexdigest()


def check(command: dict, cache: pathlib.Path, config: bytes) -> tuple[str, str]:
    stamp = cache / preprocessed_hash(command, config)
    if stamp.exists():
        return command["file"], ""
    result = subprocess.run(
        ["clang-tidy", "--quiet", command["file"], "--", *compile_words(command)[1:]],
        cwd=command["directory"],
        capture_output=True,
        text=True,
        check=False,
    )
    if result.returncode == 0:
        stamp.touch()
        return command["file"], ""
    return command["file"], result.stdout + result.stderr


def main() -> int:
    build = pathlib.Path(sys.argv[1])
    cache = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "zqutil" / "tidy"
    cache.mkdir(parents=True, exist_ok=True)
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    config = pathlib.Path(".clang-tidy").read_bytes() + version
    # A source that tests compile too is looked at as the product compiles it: without precompiled headers.
    commands = {
        command["file"]: command
        for command in json.loads((build / "compile_commands.json").read_text())
        if command["file"].endswith(".cpp") and is_product(command["file"]) and "cmake_pch" not in command["command"]
    }
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        jobs = [pool.submit(check, command, cache, config) for command in commands.values()]
        for job in concurrent.futures.as_completed(jobs):
            source, report = job.result()
            if report:
                failed += 1
                print(f"{source}:\n{report}")
    if failed:
        print(f"clang-tidy: {failed} of {len(jobs)} sources", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
