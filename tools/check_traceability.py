#!/usr/bin/env python3
"""Fails when docs/traceability.md and the sources have grown apart.

Each row of its tables has in the first column what the program has, as code between backquotes, and
in the last one the tests that check it, as `Suite.Test`; a table headed "why there is none" has the
reason there. Fails

  * when a row has no test, or one that is not found under tests/: TEST, TEST_F and TEST_P of any
    suite there, and the slots of Qt's test classes as `Class.slot`;
  * when what src/ says is in no row: names of controls, texts for the user, and words of the meter's
    commands and of the files.

What src/ says are its string literals outside comments and #include lines, adjacent ones joined:

  * a name is the first literal of a call that names a control (NAMING below), or any literal with a
    control's prefix (PREFIXED), and must stand between backquotes;
  * a text is any literal of a call that opens a box, and outside src/ui any with a blank between two
    words that is no command; it must stand in a row to the letter, with its escapes;
  * a word is one of two or more capitals and digits at the start of a literal outside src/ui.

It does not see names and texts that are put together of parts or read from elsewhere (a part is
seen, the whole is not), captions and tool tips under src/ui outside calls that open a box, texts of
one word outside such calls, numbers, places, colours and keys, nor which of two windows with a
control of the same name a row is about, nor whether a test really checks what its row says.
"""

import pathlib
import re
import sys

TABLE = pathlib.Path("docs/traceability.md")
NAMING = re.compile(
    r"\b(?:setObjectName|addItem|setUpLabel|setUpRateLabel|setUpParameter|addButton|addChoice|"
    r"addOptions?|buildOptions|addCheckBox|addTimeBox|elementName)\s*\(")
BOXES = re.compile(r"\b(?:showMessage|askYesNo|askText|refuse|askOpenFile|askSaveFile)\s*\(")
LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')
COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/|("(?:[^"\\]|\\.)*")|(\'(?:[^\'\\]|\\.)+\')', re.S)
PREFIXED = re.compile(r"(?:frm|[mM]enu|cmd|lbl|txt|chk|opt|scroll|[fF]rame)[A-Z]?\w*[a-zA-Z]")
TEXT = re.compile(r"[A-Za-z]\S* +\S*[A-Za-z]")
WORD = re.compile(r"\W*([A-Z][A-Z0-9]+)(?=\?|\b)")
GTEST = re.compile(r"^\s*TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.M)
QTEST = re.compile(r"^void (\w+Test)::(\w+)\(", re.M)
QSLOTS = re.compile(r"class (\w+Test)\b[^{]*\{(.*?)^\};", re.M | re.S)


def code_of(text):
    """Without comments and #include lines."""
    text = COMMENT.sub(lambda m: m.group(0) if m.group(1) or m.group(2) else " ", text)
    return re.sub(r"^\s*#\s*include[^\n]*", "", text, flags=re.M)


def joined(code):
    """Adjacent literals as one."""
    return re.sub(r'(?<!\\)"\s*\n\s*"', "", code)


def call(code, opening):
    """What stands between the parenthesis that ends at `opening` and its closing one."""
    depth, at = 1, opening
    while depth and at < len(code):
        literal = LITERAL.match(code, at)
        if literal:
            at = literal.end()
            continue
        depth += {"(": 1, ")": -1}.get(code[at], 0)
        at += 1
    return code[opening:at]


def sayings(root):
    """(kind, what, file) of all that src/ says."""
    for file in sorted(p for p in root.rglob("*") if p.suffix in {".h", ".cpp"}):
        code = joined(code_of(file.read_text(encoding="utf-8"))).replace('\\"', "'")
        for match in NAMING.finditer(code):
            literal = LITERAL.search(call(code, match.end()))
            if literal and re.fullmatch(r"[A-Za-z]\w*(_%1)?", literal.group(1)):
                yield "name", literal.group(1).removesuffix("_%1"), file
        for match in BOXES.finditer(code):
            for literal in LITERAL.findall(call(code, match.end())):
                if re.search("[A-Za-z]", literal):
                    yield "text", literal, file
        for literal in LITERAL.findall(code):
            if PREFIXED.fullmatch(literal):
                yield "name", literal, file
            if "ui" in file.parts:
                continue
            word = WORD.match(literal)
            if word:
                yield "word", word.group(1), file
            if TEXT.search(literal) and not (word and not re.search("[a-z]", literal)):
                yield "text", literal, file


def tests_of(root):
    found = set()
    for file in root.rglob("*.cpp"):
        text = file.read_text(encoding="utf-8")
        found.update(f"{suite}.{name}" for suite, name in GTEST.findall(text) + QTEST.findall(text))
        for suite, body in QSLOTS.findall(text):
            found.update(f"{suite}.{name}" for name in re.findall(r"^\s*void (\w+)\(", body, re.M))
    return found


def rows_of(text):
    """(line number, what, tests) of each row of the tables; None for the tests of what has none."""
    needs_tests = True
    for number, line in enumerate(text.splitlines(), 1):
        cells = [cell.strip() for cell in line.split("|")[1:-1]]
        if len(cells) != 2 or not cells[0].strip("-"):
            continue
        what, last = cells
        if what == "what":
            needs_tests = last == "checked by"
        elif needs_tests or not last:
            yield number, what, re.findall(r"`([^`]+)`", last)
        else:
            yield number, what, None


def problems_of(rows, tests, said):
    for number, what, names in rows:
        if names == []:
            yield f"{TABLE}:{number}: no test for {what}"
        for name in names or []:
            if name not in tests:
                yield f"{TABLE}:{number}: there is no test {name}"
    whats = [what for _, what, _ in rows]
    quoted = {name for what in whats for name in re.findall(r"`(\w+)[^`]*`", what)}
    words = {word for what in whats for word in re.findall(r"\w+", what)}
    text = "\n".join(whats)
    known = {"name": lambda what: what in quoted,
             "word": lambda what: what in words,
             "text": lambda what: what.strip() in text}
    reported = set()
    for kind, what, file in said:
        if not known[kind](what) and (kind, what) not in reported:
            reported.add((kind, what))
            yield f'{file}: the {kind} "{what}" is in no row of {TABLE}'


def main():
    rows = list(rows_of(TABLE.read_text(encoding="utf-8")))
    tests = tests_of(pathlib.Path("tests"))
    said = list(sayings(pathlib.Path("src")))
    problems = list(problems_of(rows, tests, said))
    for problem in problems:
        print(problem)
    if not rows or not tests or not said:
        print("nothing to compare")
        return 1
    print(f"{len(rows)} rows, {len(said)} names, texts and words of src, {len(tests)} tests: "
          f"{len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
