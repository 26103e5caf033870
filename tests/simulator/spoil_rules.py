#!/usr/bin/env python3
"""Writes copies of sources of the simulated meter in which each rule can be broken at run time.

spoil_rules.py broken-rules.txt TARGET SOURCE...

The table says which text of which source becomes what. A text must stand there exactly once, however
it is indented or wrapped; a change of the simulator that moves it is an error here, so the table
cannot go stale. Writes the sources, BrokenRule.h for them, and BrokenRules.inc for the test.
"""

import pathlib
import re
import sys

RULE = re.compile(r"rule (\w+): (\w+(?: \w+)*)")
USE = re.compile(r"\bbroken\((\w+)\)")

HEADER = """#pragma once
#include <cstdlib>
#include <string_view>
namespace simmeter {
// Chosen once for each process.
inline bool isBroken(std::string_view rule) {
  static const char* const chosen = std::getenv("SIMULATED_METER_BROKEN_RULE");
  return chosen != nullptr && rule == chosen;
}
}  // namespace simmeter
"""


class Change:
    def __init__(self, source, where):
        self.source = source
        self.where = where
        self.old = []
        self.new = []


def read_table(path):
    """The rules with their cases, and the changes. A paragraph changes one source."""
    rules, changes, source, mode = {}, [], None, None
    for number, line in enumerate(path.read_text().splitlines(), 1):
        where = f"{path.name}:{number}"
        mark, text = line[:1], line[2:]
        if mark == "#":
            continue
        if not line.strip():
            source = mode = None
        elif match := RULE.fullmatch(line):
            if match[1] in rules:
                sys.exit(f"{where}: rule {match[1]} stands twice")
            rules[match[1]] = match[2]
        elif line.startswith("in "):
            source = line[3:].strip()
        elif mark == "-" and source:
            if mode != "-":
                changes.append(Change(source, where))
            changes[-1].old.append(text)
            mode = mark
        elif mark == "+" and mode:
            changes[-1].new.append(text)
            mode = mark
        else:
            sys.exit(f"{where}: not understood: {line}")
    return rules, changes


def place_of(change, text):
    words = " ".join(change.old).split()
    found = list(re.finditer(r"\s+".join(map(re.escape, words)), text))
    if len(found) != 1:
        old = " ".join(words)
        sys.exit(f"{change.where}: stands {len(found)} times in {change.source}: {old}")
    return found[0].span()


def spoil(changes, text):
    """The text with all changes made; the places are those of the original."""
    places = sorted((*place_of(change, text), change) for change in changes)
    for (_, end, _), (start, _, change) in zip(places, places[1:]):
        if start < end:
            sys.exit(f"{change.where}: overlaps another text of {change.source}")
    for start, end, change in reversed(places):
        new = USE.sub(r'simmeter::isBroken("\1")', "\n".join(change.new))
        text = text[:start] + new + text[end:]
    return '#include "BrokenRule.h"\n' + text


def check_rules(table, rules, changes):
    used = set()
    for change in changes:
        names = set(USE.findall("\n".join(change.new)))
        if not names:
            sys.exit(f"{change.where}: changes the meter while no rule is broken")
        if unknown := names - rules.keys():
            sys.exit(f"{change.where}: no such rule: {', '.join(sorted(unknown))}")
        used |= names
    if unused := rules.keys() - used:
        sys.exit(f"{table.name}: nothing is changed for {', '.join(sorted(unused))}")


def write(path, text):
    # What is unchanged is not compiled again.
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def main():
    table, target, *sources = map(pathlib.Path, sys.argv[1:])
    rules, changes = read_table(table)
    check_rules(table, rules, changes)
    changed, given = {each.source for each in changes}, {each.name for each in sources}
    if changed != given:
        sys.exit(f"{table.name}: given or changed, but not both: {', '.join(sorted(changed ^ given))}")

    target.mkdir(parents=True, exist_ok=True)
    for source in sources:
        own = [each for each in changes if each.source == source.name]
        write(target / source.name, spoil(own, source.read_text()))
    write(target / "BrokenRule.h", HEADER)
    rows = [f'{{"{name}", "{cases}"}},\n' for name, cases in rules.items()]
    write(target / "BrokenRules.inc", "".join(rows))


main()
