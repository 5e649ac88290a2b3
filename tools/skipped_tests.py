#!/usr/bin/env python3
"""skipped_tests.py JUNIT_XML: names every skipped test of a CTest run and says why.

CTest shows a skipped test's output nowhere but in its logs, so a skip would go by with nothing
but its name. This reads the JUnit file that `ctest --output-junit` wrote and prints, per skipped
test, the reason its output gives: a GoogleTest skip message, or what a script printed before it
exited with its skip status. A GoogleTest skip inside a test that CTest counts as passed (no skip
pattern set) is reported too. Prints nothing when nothing was skipped; always exits 0."""

import sys
import xml.etree.ElementTree as ET

GTEST_SKIPPED = "[  SKIPPED ]"


def reason(output):
    """The lines that explain a skip: GoogleTest's message after "file:line: Skipped", otherwise
    the last lines a script printed."""
    lines = [line for line in output.splitlines() if line.strip()]
    for n, line in enumerate(lines):
        if line.endswith(": Skipped"):
            return [text for text in lines[n + 1:] if not text.startswith("[")][:3] or [line]
    return lines[-3:] or ["(it printed no reason)"]


def skipped_by_ctest(case):
    """CTest's JUnit file marks every test that did not run as skipped, also those it counts as
    failed (a missing executable, a failed fixture); only these messages are real skips."""
    mark = case.find("skipped")
    message = "" if mark is None else mark.get("message", "")
    return message.startswith("SKIP_") or message == "Disabled"


def main(path):
    try:
        cases = ET.parse(path).getroot().iter("testcase")
    except (OSError, ET.ParseError) as error:
        print(f"skipped tests: cannot read {path}: {error}")
        return 0
    skipped = []
    for case in cases:
        output = case.findtext("system-out") or ""
        if skipped_by_ctest(case) or GTEST_SKIPPED in output:
            skipped.append((case.get("name"), reason(output)))
    if skipped:
        print(f"{len(skipped)} test(s) skipped:")
        for name, lines in skipped:
            print(f"  {name}: {lines[0]}")
            for line in lines[1:]:
                print(f"  {' ' * len(name)}  {line}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
