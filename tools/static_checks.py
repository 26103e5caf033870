#!/usr/bin/env python3
"""clang-tidy over many sources in a seventh of the time.

Most of what clang-tidy does for a source is done for the headers that it includes: Qt's alone are twenty
times as long as any file of ours. So the sources of a folder are checked as one, a dozen at a time, and
the headers once for all of them. Names that two of them keep for themselves may clash; such a dozen is
checked source by source.

  tools/static_checks.py BUILD CHECKS SOURCE...
  tools/static_checks.py --one-by-one BUILD CHECKS SOURCE...

BUILD holds compile_commands.json; CHECKS is added to those of .clang-tidy. Prints each finding once and
ends with 1 if there is any. clang's path-sensitive analyzer needs the sources one by one.
"""

import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys

TOGETHER = 12
# Of the dozen itself: that it includes sources, and that one of them has a name of another.
OF_THE_DOZEN = ["-Wno-shadow"]
NOT_FOR_A_DOZEN = ",-bugprone-suspicious-include"


def compile_options(build):
    """By source, what it is compiled with; the first target that has it counts."""
    options = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        words = shlex.split(entry["command"])
        compiler = next(i for i, word in enumerate(words) if "clang++" in word)
        own = words[compiler + 1 : words.index("-o")]
        # Headers that were compiled once for all hold more than a source includes.
        if "-Winvalid-pch" in own:
            own = own[: own.index("-Winvalid-pch")]
        options.setdefault(entry["file"], own)
    return options


def dozens(sources, options, together):
    alike = {}
    for source in sources:
        key = (str(source.parent), tuple(options[str(source)]))
        alike.setdefault(key, []).append(source)
    for members in alike.values():
        for start in range(0, len(members), together):
            yield members[start : start + together]


def findings_of(file, checks, options):
    command = ["clang-tidy", "-quiet", f"-checks={checks}", str(file), "--", *options]
    run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
    found = [line for line in run.stdout.splitlines() if "warning:" in line or "error:" in line]
    if run.returncode != 0 and not found:
        found = [f"{file}: clang-tidy ended with {run.returncode}: error:\n{run.stdout}{run.stderr}"]
    return found


def check(members, folder, checks, options):
    its_options = options[str(members[0])]
    if len(members) > 1:
        name = "-".join([*members[0].relative_to(pathlib.Path.cwd()).with_suffix("").parts, "and-others"])
        together = folder / f"{name}.cpp"
        together.write_text("".join(f'#include "{member}"\n' for member in members))
        found = findings_of(together, checks + NOT_FOR_A_DOZEN, [*its_options, *OF_THE_DOZEN])
        # The compiler's own complaints are about the dozen, or will be repeated.
        if not any("[clang-diagnostic-" in line for line in found):
            return found
        print(f"{name}: checked one by one", file=sys.stderr)
    return [line for member in members for line in findings_of(member, checks, its_options)]


def main():
    arguments = sys.argv[1:]
    one_by_one = arguments[0] == "--one-by-one"
    build, checks, *names = arguments[one_by_one:]
    build = pathlib.Path(build).resolve()
    sources = [pathlib.Path(name).resolve() for name in names]
    options = compile_options(build)
    for source in sources:
        if str(source) not in options:
            print(f"{source.relative_to(pathlib.Path.cwd())}: not built here, not checked", file=sys.stderr)
    sources = [source for source in sources if str(source) in options]
    if not sources:
        sys.exit("static checks: none of the sources is built here")
    # Where clang-tidy looks for .clang-tidy, from the file up.
    folder = build / "static-checks"
    folder.mkdir(exist_ok=True)
    (folder / ".clang-tidy").write_text(pathlib.Path(".clang-tidy").read_text())
    found = set()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        groups = dozens(sources, options, 1 if one_by_one else TOGETHER)
        jobs = [pool.submit(check, members, folder, checks, options) for members in groups]
        for job in jobs:
            found.update(job.result())
    for line in sorted(found):
        print(line)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
