#!/usr/bin/env python3
"""Prints which share of the code is tests; warns above one limit and fails above another: share_of_tests.py WARN FAIL

Lines of code are those that are neither blank nor only comment."""
import re
import subprocess
import sys

ENDINGS = ("*.cpp", "*.h", "*.mm", "*.m", "*.py", "*.sh")
aim, limit = map(float, sys.argv[1:])
lines = {True: 0, False: 0}
for path in subprocess.run(["git", "ls-files", *ENDINGS], check=True, text=True, stdout=subprocess.PIPE).stdout.split():
    comment = re.compile(r"\s*(#|$)" if path.endswith((".py", ".sh")) else r"\s*(//|/\*|\* |\*/|$)")
    with open(path, encoding="utf-8") as file:
        lines[path.startswith("tests/")] += sum(not comment.match(line) for line in file)
share = 100 * lines[True] / sum(lines.values())
print(f"Tests are {share:.1f} % of {sum(lines.values())} lines; {aim:g} % are aimed at, {limit:g} % the limit.")
if share > aim:
    print(f"Warning: that is more than {aim:g} %.")
sys.exit(share > limit)
