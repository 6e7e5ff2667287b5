"""Runs the tests of a program at the same time, for tests that wait for devices more than for the processor.

Each test has its own object, and whatever it touches must be its own too. There are no fixtures of classes or modules.
"""

import sys
import unittest
from concurrent.futures import ThreadPoolExecutor

AT_ONCE = 8


def mapped(work, things):
    """What `work` makes of each, in their order."""
    with ThreadPoolExecutor(AT_ONCE) as pool:
        return list(pool.map(work, things))


def each(suite):
    for test in suite:
        if isinstance(test, unittest.TestSuite):
            yield from each(test)
        else:
            yield test


def run(test):
    result = unittest.TestResult()
    test.run(result)
    return result


def main():
    """The program's end: all its tests, or those that its words name (CLASS.METHOD)."""
    module, loader = sys.modules["__main__"], unittest.defaultTestLoader
    names = sys.argv[1:]
    tests = list(each(loader.loadTestsFromNames(names, module) if names else loader.loadTestsFromModule(module)))
    bad = [each_bad for result in mapped(run, tests) for each_bad in result.failures + result.errors]
    for test, text in bad:
        print(f"FAILED {test}\n{text}", file=sys.stderr)
    print(f"{len(tests)} tests, {len(bad)} failures", file=sys.stderr)
    sys.exit(1 if bad or not tests else 0)
