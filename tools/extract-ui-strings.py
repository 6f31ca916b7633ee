#!/usr/bin/env python3
"""Collects the English interface texts quoted in the design notes.

Every text a user sees is a localizer key, and the design notes quote each
one in double quotes. This tool pulls the quoted texts out of the notes,
drops what is plainly not shown to a user (class names, function
signatures, preference and resource names, file names, type codes), drops
the texts a reviewer has already rejected (one per line in the exclusion
file), adds the texts the program shows beyond those of the notes (one per
line in the addition file), and writes the rest sorted and without
duplicates, one per line.

Usage: extract-ui-strings.py NOTES.md [--exclude data/locale/excluded.txt]
                             [--add data/locale/added.txt]
                             [--output data/locale/keys.txt]
"""

import argparse
import re
import sys

QUOTED = re.compile(r'"((?:[^"\\\n]|\\.)*)"')

# The notes call the product by an older name; the program is TaleLoom.
PRODUCT_NAMES = [("Storyloom", "TaleLoom"), ("Tale...Loom", "TaleLoom")]


# Short texts that the code filters below would take for codes.
ALWAYS_KEPT = {"OK"}


def looks_like_code(text):
    """True for quoted texts that are names or codes, not interface text."""
    if text in ALWAYS_KEPT:
        return False
    stripped = text.strip()
    if not re.search(r"[A-Za-z]", stripped):
        return True  # punctuation, numbers, separators
    if "::" in text or re.search(r"\w\(.*\)", text) or "==" in text:
        return True  # function signatures and assertion texts
    if "\\" in text:
        return True  # registry and file system paths
    if re.fullmatch(r"K[A-Z]\w*", stripped):
        return True  # framework class names
    if re.fullmatch(r"[A-Z0-9 ?]{1,5}", text) or re.fullmatch(r"[A-Za-z0-9 ?]{4}", text) and " " in text:
        return True  # file type codes and extensions ("TEXT", "BMP ")
    if re.fullmatch(r"[a-z?]{4}", stripped):
        return True  # creator codes ("ttxt")
    if re.fullmatch(r"[A-Za-z]+[a-z0-9][A-Z]\w*", stripped):
        return True  # identifiers: preference, parameter and class names
    if re.fullmatch(r"[\w-]+\.[A-Za-z0-9]{2,4}", stripped):
        return True  # file names ("SAVE.TPD", "MF.dll")
    if re.fullmatch(r"[A-Z][A-Z0-9_]+", stripped) and len(stripped) > 5:
        return True  # constants and resource names
    return False


def skip_error_tables(notes):
    """Drops the numbered error tables: their texts have their own
    per-language table in the error handler, not the localizer."""
    kept = []
    for line in notes.splitlines():
        if len(re.findall(r'\b\d+ "', line)) < 10:
            kept.append(line)
    return "\n".join(kept)


def rename_product(text):
    for old, new in PRODUCT_NAMES:
        text = text.replace(old, new)
    return text


def read_lines(path):
    try:
        with open(path, encoding="utf-8") as f:
            return [line.rstrip("\n") for line in f if line.strip() and not line.startswith("#")]
    except FileNotFoundError:
        return []


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("notes")
    parser.add_argument("--exclude", default="data/locale/excluded.txt")
    parser.add_argument("--add", default="data/locale/added.txt")
    parser.add_argument("--output", default="data/locale/keys.txt")
    args = parser.parse_args()

    excluded = set(read_lines(args.exclude))
    with open(args.notes, encoding="utf-8") as f:
        notes = f.read()

    keys = set()
    for match in QUOTED.finditer(skip_error_tables(notes)):
        text = match.group(1).replace('\\"', '"')
        if not text or looks_like_code(text):
            continue
        text = rename_product(text)
        if text in excluded:
            continue
        keys.add(text)
    keys.update(line for line in read_lines(args.add) if line)

    with open(args.output, "w", encoding="utf-8") as out:
        for key in sorted(keys):
            out.write(key.replace("\\", "\\\\").replace("\t", "\\t") + "\n")
    print(f"{len(keys)} keys written to {args.output}", file=sys.stderr)


if __name__ == "__main__":
    main()
