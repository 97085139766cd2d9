#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Keeps the catalogues in po/ in step with the texts in src/.

catalogue.py check [ROOT]    every text translated, none fuzzy, none left over; exit 1 otherwise
catalogue.py update [ROOT]   gathers the texts into po/tessaly.pot and merges them into po/*.po
catalogue.py --self-test
"""

import ast
import dataclasses
import os
import pathlib
import re
import subprocess
import sys
import tempfile

GATHER = ["xgettext", "--language=C++", "--from-code=UTF-8", "--sort-by-file", "--add-location=file",
          "--add-comments=Translators:", "--package-name=tessaly", "--foreign-user",
          "--keyword", "--keyword=tr:1,1t", "--keyword=tr:1c,2,2t", "--keyword=trPlural:1,2",
          "--keyword=trText:1", "--keyword=N_:1", "--output=-"]
PLACE = re.compile(r"\{[^{}]*\}")
FIELD = re.compile(r'(msgctxt|msgid_plural|msgid|msgstr(?:\[\d+\])?) (".*")$')


@dataclasses.dataclass
class Entry:
    """One text of a catalogue."""

    context: str = ""
    english: str = ""
    plural: str = ""
    translations: list = dataclasses.field(default_factory=list)
    is_fuzzy: bool = False
    is_obsolete: bool = False

    def key(self):
        return (self.context, self.english, self.plural)


def run(command, **keywords):
    """The standard output of a command; its complaints go to the user, and a failure ends us."""
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=False, **keywords)
    if done.returncode:
        sys.exit(f"{command[0]} failed")
    return done.stdout


def gather(root):
    """The catalogue of all texts in src/, as it would be written to po/tessaly.pot."""
    files = sorted(str(f.relative_to(root)) for f in (root / "src").rglob("*")
                   if f.suffix in {".h", ".cpp"})
    text = run(GATHER + files, cwd=root)
    # A date would make two runs over the same sources differ.
    text = re.sub(r'"POT-Creation-Date:.*\n', "", text)
    text = re.sub(r"\A(#.*\n)+", "# SPDX-License-Identifier: MIT\n#, fuzzy\n", text)
    return text.replace("charset=CHARSET", "charset=UTF-8")


def parse(text):
    """The entries of a catalogue, its heading left out."""
    entries = []
    for block in run(["msgcat", "--no-wrap", "-"], input=text).split("\n\n"):
        entry = Entry()
        for line in block.splitlines():
            if line.startswith("#~"):
                entry.is_obsolete = True
                line = line[2:].lstrip(" |")
            if line.startswith("#,") and "fuzzy" in line:
                entry.is_fuzzy = True
            field = FIELD.match(line)
            if field:
                last, value = field[1], ast.literal_eval(field[2])
                if last.startswith("msgstr"):
                    entry.translations.append(value)
                else:
                    name = {"msgctxt": "context", "msgid": "english", "msgid_plural": "plural"}[last]
                    setattr(entry, name, value)
            elif line.startswith('"'):  # msgcat breaks behind each \n
                value = ast.literal_eval(line)
                if last.startswith("msgstr"):
                    entry.translations[-1] += value
                else:
                    setattr(entry, name, getattr(entry, name) + value)
        if entry.english:
            entries.append(entry)
    return entries


def places(text):
    return sorted(PLACE.findall(text.replace("{{", "").replace("}}", "")))


def complaints(wanted, present):
    """What is wrong with the entries `present` of a catalogue that is to hold those `wanted`."""
    keys = {entry.key() for entry in wanted}
    translated = set()
    for entry in present:
        if entry.is_obsolete or entry.key() not in keys:
            yield f"no longer used: {entry.english!r}"
            continue
        translated.add(entry.key())
        if entry.is_fuzzy:
            yield f"fuzzy: {entry.english!r}"
        elif not entry.translations or not all(entry.translations):
            yield f"not translated: {entry.english!r}"
        for number, translation in enumerate(entry.translations):
            english = [entry.english, entry.plural][min(number, 1)] or entry.english
            if translation and places(translation) != places(english):
                yield f"other places than in {english!r}: {translation!r}"
    for context, english, _ in sorted(keys - translated):
        yield f"missing: {english!r}" + (f" ({context})" if context else "")


def check(root):
    template = gather(root)
    wanted = parse(template) if template else []
    catalogues = sorted((root / "po").glob("*.po"))
    if not catalogues:
        return ["po: there is no catalogue"]
    if not wanted:
        return ["src: there is no text to translate"]
    found = []
    kept = root / "po" / "tessaly.pot"
    if not kept.exists() or kept.read_text(encoding="utf-8") != template:
        found.append("po/tessaly.pot: not up to date; run tools/update_catalogue")
    for catalogue in catalogues:
        run(["msgfmt", "--check-format", "--check-domain", "--output-file", os.devnull, str(catalogue)])
        present = parse(catalogue.read_text(encoding="utf-8"))
        found += [f"po/{catalogue.name}: {what}" for what in complaints(wanted, present)]
    return found


def update(root):
    template = root / "po" / "tessaly.pot"
    template.write_text(gather(root), encoding="utf-8")
    for catalogue in sorted((root / "po").glob("*.po")):
        run(["msgmerge", "--quiet", "--no-fuzzy-matching", "--update", "--backup=none",
             "--sort-by-file", "--add-location=file", str(catalogue), str(template)])
        cleaned = run(["msgattrib", "--no-obsolete", "--sort-by-file", "--add-location=file",
                       str(catalogue)])
        catalogue.write_text(cleaned, encoding="utf-8")
    return check(root)


SOURCE = r"""
auto a = tr("Today");
auto b = tr("menu", "Open");
auto c = trPlural("{} note", "{} notes", n);
Row d{N_("Two\nlines " "joined")};
auto e = untranslated("Never");
"""
HEADING = 'msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n\n'
GOOD = [
    'msgid "Today"\nmsgstr "Heute"\n',
    'msgctxt "menu"\nmsgid "Open"\nmsgstr "Öffnen"\n',
    'msgid "{} note"\nmsgid_plural "{} notes"\nmsgstr[0] "{} Notiz"\nmsgstr[1] "{} Notizen"\n',
    'msgid "Two\\nlines joined"\nmsgstr "Zwei\\nZeilen"\n',
]

# A change to the good catalogue (what, by what), and the one thing that must then be said of it.
CASES = [
    ("", "", ""),
    ("Heute", "", "not translated: 'Today'"),
    ("{} Notizen", "", "not translated: '{} note'"),
    ('msgid "Today"', '#, fuzzy\nmsgid "Today"', "fuzzy: 'Today'"),
    (GOOD[0], "", "missing: 'Today'"),
    ('msgctxt "menu"\n', "", "missing: 'Open' (menu)"),
    ("{} Notizen", "{0} Notizen", "other places than in '{} notes': '{0} Notizen'"),
    ("{} Notiz\"", "Eine {} {}\"", "other places than in '{} note'"),
    ("Today", "Yesterday", "no longer used: 'Yesterday'"),
    (GOOD[0], GOOD[0] + '\n#~ msgid "Gone"\n#~ msgstr "Weg"\n', "no longer used: 'Gone'"),
]


def self_test():
    failed = []
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        (root / "src").mkdir()
        (root / "src" / "a.cpp").write_text(SOURCE)
        wanted = parse(gather(root))
    good = HEADING + "\n".join(GOOD)
    for what, by, expected in CASES:
        said = "\n".join(complaints(wanted, parse(good.replace(what, by) if what else good)))
        if (expected not in said) if expected else said:
            failed.append(f"{what!r} -> {by!r}: expected {expected!r}, got {said!r}")
    return failed


def main(arguments):
    if arguments == ["--self-test"]:
        found = self_test()
    elif arguments and arguments[0] in {"check", "update"}:
        default = pathlib.Path(__file__).resolve().parent.parent
        root = pathlib.Path(arguments[1]) if len(arguments) > 1 else default
        found = {"check": check, "update": update}[arguments[0]](root)
    else:
        sys.exit(__doc__)
    print("\n".join(found) if found else "nothing to complain about")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
