#!/usr/bin/env python3
"""Every text that a bundle looks up is in its tables, in both languages, and nothing else is: texts_test.py SOURCE-ROOT"""
import glob
import os
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ElementTree

ROOT = os.path.abspath(sys.argv[1])
LANGUAGES = ("French", "English")
# Names and texts that are the same in every language, and are not looked up in vain.
AS_THEY_STAND = {"", "OK", "Quorel"}
# The controls that the pane's classes make are named in code; a literal in such a call is a key.
CALLS = re.compile(r"\b(?:[Ll]ocalized|VXLocalized\w*)(?:\(|:)((?:[^()\";\[\]]|\[[^\[\]]*\]|\"(?:[^\"\\]|\\.)*\")*)")
LISTS = re.compile(r"for \(const char\* key : \{([^}]*)\}")
LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')
ENTRY = re.compile(r'^"((?:[^"\\]|\\.)*)" = "((?:[^"\\]|\\.)*)";$')

BUNDLES = {
    "pane": (["pane/*.cpp", "configurator/*.cpp", "kit/*.cpp", "appkit/*.mm"], ["resources/interface/*.xib"], "resources/texts"),
    "sample": (["modules/sample/class/*.m"], [], "modules/sample/class"),
}


def files(patterns):
    return [path for pattern in patterns for path in sorted(glob.glob(f"{ROOT}/{pattern}"))]


def keys_in_code(patterns):
    keys = set()
    for path in files(patterns):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        for argument in CALLS.findall(text) + LISTS.findall(text):
            keys.update(LITERAL.findall(argument))
    return keys


def keys_in_interfaces(patterns):
    return {element.get(attribute) for path in files(patterns) for element in ElementTree.parse(path).iter()
            for attribute in ("title", "toolTip") if element.get(attribute)}


def table(folder, language):
    entries = {}
    path, = files([f"{folder}/{language}.lproj/*.strings"])
    with open(path, encoding="utf-8-sig") as file:
        for line in file:
            if match := ENTRY.match(line.strip()):
                assert match[1] not in entries, f"{match[1]} stands twice in {folder}, {language}"
                entries[match[1]] = match[2]
            else:
                assert not line.strip() or line.startswith("/*"), f"unreadable in {folder}, {language}: {line}"
    return entries


class TextsTest(unittest.TestCase):
    def test_tables_hold_what_is_looked_up(self):
        for name, (code, interfaces, folder) in BUNDLES.items():
            wanted = (keys_in_code(code) | keys_in_interfaces(interfaces)) - AS_THEY_STAND
            self.assertGreater(len(wanted), 1, f"no keys found in {name}: this test no longer sees them")
            for language in LANGUAGES:
                with self.subTest(bundle=name, language=language):
                    entries = table(folder, language)
                    self.assertEqual(sorted(wanted - entries.keys()), [], "keys without a text")
                    self.assertEqual(sorted(entries.keys() - wanted), [], "texts that nobody looks up")
                    self.assertEqual([key for key, text in entries.items() if not text], [], "empty texts")

    def test_texts_keep_their_placeholders(self):
        for name, (_, _, folder) in BUNDLES.items():
            for language in LANGUAGES:
                for key, text in table(folder, language).items():
                    with self.subTest(bundle=name, language=language, key=key):
                        self.assertEqual(re.findall("%.", text), re.findall("%.", key))

    def test_programs_speak_french(self):
        def entries(*command):
            """What each text is said as; the same one for a number has one text for one and one for many."""
            catalog = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
            fields = [dict(re.findall(r'^(msg\S+) ((?:"(?:[^"\\]|\\.)*"\n?)+)', block, re.MULTILINE))
                      for block in catalog.split("\n\n")]
            return {field["msgid"] + field.get("msgid_plural", ""):
                    [text for name, text in field.items() if name.startswith("msgstr")] for field in fields}

        code = entries("xgettext", "--language=C++", "--from-code=UTF-8", "--keyword=translated", "--keyword=marked",
                       "--keyword=translatedCount:1,2", "-o", "-", *files(["words/*.cpp", "qt/*/*.cpp", "ctl/*.cpp", "agent/*.cpp", "agent/*/*.cpp"]))
        french = entries("msgcat", f"{ROOT}/resources/programs/fr.po")
        self.assertGreater(len(code), 50)
        self.assertEqual(sorted(code.keys() - french.keys()), [], "texts without a French one")
        self.assertEqual(sorted(french.keys() - code.keys()), [], "French texts that nobody looks up")
        for key, texts in french.items():
            with self.subTest(key):
                self.assertNotIn('""', map(str.strip, texts))
                self.assertEqual(set(re.findall(r"{\d}", texts[-1])), set(re.findall(r"{\d}", key)))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
