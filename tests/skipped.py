#!/usr/bin/env python3
"""Says which tests were skipped, or left out a part, and why, in one line for each reason:

    skipped.py RESULTS     RESULTS is a file of ctest --output-junit

ctest itself shows a reason in its log only.
"""
import re
import sys
import xml.etree.ElementTree

# The words of require.py, of Python's unittest and of GoogleTest.
REASON = re.compile(r"skipped: (.+)$|\.\.\. skipped '(.+)'$|: Skipped\n(.*)$", re.M)


def reasons(results):
    """The names of the tests by the reason for which they were skipped."""
    found = {}
    for test in xml.etree.ElementTree.parse(results).iter("testcase"):
        given = [next(filter(None, match.groups()), "no reason given")
                 for match in REASON.finditer(test.findtext("system-out") or "")]
        if not given and test.get("status") == "notrun":
            given = ["no reason given"]
        for reason in dict.fromkeys(given):
            found.setdefault(reason, []).append(test.get("name"))
    return found


def main():
    for reason, tests in reasons(sys.argv[1]).items():
        print("skipped, %s: %s" % (reason, ", ".join(tests)))


if __name__ == "__main__":
    main()
