#!/usr/bin/env python3
"""Fails when an #include under src/ runs against the direction in which the layers may use each other.

A layer is a set of files, mostly a folder; docs/decisions/0001 says why they stand as they do. The
layers in QT_LAYERS alone may include the toolkit's headers.
"""

import pathlib
import re
import sys

# layer -> (files, layers whose headers it may include besides its own). The first pattern that
# matches a file decides.
LAYERS = {
    "platform": ([r"platform/.*"], []),
    "link": ([r"link/.*"], ["platform"]),
    "files": ([r"files/.*"], ["link", "platform"]),
    "model": (
        [r"profile/(AcquisitionControl|GraphFault|GraphScale|MeasurementSettings|ProfileParameters)\..*"],
        ["link", "platform"],
    ),
    "ccdf": ([r"ccdf/.*"], ["model", "files", "link", "platform"]),
    "meterconfig": (
        [r"startup/(ReadMeterConfig|WriteMeterConfig)\..*"],
        ["model", "link", "platform", "ccdf:StatisticsAcquisition.h"],
    ),
    "profile": ([r"profile/.*"], ["model", "meterconfig", "link", "platform"]),
    "tracefiles": ([r"tracefiles/.*"], ["profile", "model", "files", "link", "platform"]),
    "settings": (
        [r"settings/.*"],
        ["profile", "model", "meterconfig", "files", "link", "platform"],
    ),
    "startup": (
        [r"startup/.*"],
        ["profile", "ccdf", "meterconfig", "model", "link", "platform"],
    ),
    "ui": (
        [r"ui/.*"],
        ["startup", "settings", "tracefiles", "profile", "ccdf", "meterconfig", "model", "files",
         "link", "platform"],
    ),
    "host": ([r"host/.*"], ["platform"]),
    "main": (
        [r"main\.cpp", r"Program\..*"],
        ["ui", "host", "startup", "settings", "tracefiles", "profile", "ccdf", "meterconfig",
         "model", "link", "platform"],
    ),
}
QT_LAYERS = {"ui", "host", "main"}
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')
QT_HEADER = re.compile(r"^(Q[A-Z]\w*|Qt\w*/.*|qt\w*/.*|q\w+\.h)$")


def layer_of(path):
    for layer, (patterns, _) in LAYERS.items():
        if any(re.fullmatch(pattern, path) for pattern in patterns):
            return layer
    return None


def allowed(source_layer, target_layer, target):
    if source_layer == target_layer:
        return True
    for entry in LAYERS[source_layer][1]:
        layer, _, only = entry.partition(":")
        if layer == target_layer and (not only or target.endswith("/" + only)):
            return True
    return False


def problems_of(root, file):
    path = file.relative_to(root).as_posix()
    layer = layer_of(path)
    if layer is None:
        yield f"{path}: belongs to no layer; name it in tools/check_includes.py"
        return
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        quote, target = match.groups()
        where = f"{path}:{number}"
        if QT_HEADER.match(target):
            if layer not in QT_LAYERS:
                yield f"{where}: {layer} has no business with the toolkit ({target})"
            continue
        if quote == "<":
            continue
        target_layer = layer_of(target)
        if target_layer is None:
            yield f"{where}: {target} is in no layer"
        elif not allowed(layer, target_layer, target):
            yield f"{where}: {layer} may not use {target_layer} ({target})"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "src")
    files = sorted(p for p in root.rglob("*") if p.suffix in {".h", ".cpp"})
    problems = [problem for file in files for problem in problems_of(root, file)]
    for problem in problems:
        print(problem)
    if not files:
        print(f"no sources under {root}")
        return 1
    print(f"{len(files)} files, {len(problems)} includes in the wrong direction")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
