#!/usr/bin/env python3
"""Holds every include against the table of folders in docs/architecture.md, which says who may see whom.

A file may include the standard library, what lies in its own folder and what its row names in backticks, "all" being
whatever there is; headers of the system where the row speaks of libraries, and of the toolkit where it speaks of AppKit."""
import re
import subprocess
import sys

with open("docs/architecture.md", encoding="utf-8") as file:
    rows = re.findall(r"^\| (`.*?) \|.*\| (.*?) \|$", file.read(), re.MULTILINE)
may_include = {folder: may for folders, may in rows for folder in re.findall(r"`(.*?)`", folders)}
TOOLKIT = re.compile("(AppKit|Foundation|GNUstepGUI|PreferencePanes|objc)/")
INCLUDE = re.compile(r'^#\s*(?:include|import) (["<])(.*?)[">]', re.MULTILINE)


def folder_of(path):
    return max((folder for folder in may_include if path.startswith(folder)), key=len, default=None)


faults = []
listed = subprocess.run(["git", "ls-files", "*.cpp", "*.h", "*.mm", "*.m"], check=True, text=True, stdout=subprocess.PIPE)
for path in listed.stdout.split():
    folder = folder_of(path)
    may = may_include.get(folder, "")
    allowed = {folder, *re.findall(r"`(.*?)`", may)}
    with open(path, encoding="utf-8") as file:
        for quote, name in INCLUDE.findall(file.read()):
            if quote == '"' and "/" in name:
                fine = may == "all" or folder_of(name) in allowed or name in allowed
            else:  # the standard library's headers have no ending
                needs = "AppKit" if TOOLKIT.match(name) else "libraries" if "." in name or "/" in name else ""
                fine = may == "all" or needs in may or name in allowed
            if not fine:
                faults.append(f"{path}: {name} is not for this folder, says docs/architecture.md")
print(*faults, sep="\n", end="\n" if faults else "")
sys.exit(bool(faults))
