#!/usr/bin/env python3
"""The texts and pictures of the package, before it is built."""

import re
import struct
import tempfile
import unittest
import zlib
from pathlib import Path
from xml.etree import ElementTree

from support import BUILD, ICON_SIZES, ID, SOURCE, VERSION, main, need, run

PACKAGING = SOURCE / "packaging"
DESKTOP_FILES = (f"{ID}.desktop", f"{ID}.SimulatedMeter.desktop")
PAGES = ("pulsemod.1", "pulsemod-simulated.1", "simulated-meter.1")


def pixels(file):
    """(width, height, rows of RGBA bytes) of a PNG with 8 bits and an alpha channel."""
    data = file.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", f"{file} is no PNG"
    at, packed, head = 8, b"", None
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            head = struct.unpack(">IIBBBBB", body)
        if kind == b"IDAT":
            packed += body
        at += 12 + length
    width, height, *form = head
    assert form == [8, 6, 0, 0, 0], f"{file} is not of the form that is read here: {form}"
    raw, stride = zlib.decompress(packed), width * 4
    rows, above = [], bytes(stride)
    for y in range(height):
        start = y * (stride + 1)
        row = unfiltered(raw[start], raw[start + 1:start + 1 + stride], above)
        rows.append(row)
        above = row
    return width, height, rows


def unfiltered(kind, line, above):
    row = bytearray(line)
    for i, value in enumerate(row):
        left = row[i - 4] if i >= 4 else 0
        corner = above[i - 4] if i >= 4 else 0
        row[i] = (value + predicted(kind, left, above[i], corner)) & 255
    return bytes(row)


def predicted(kind, left, up, corner):
    if kind == 4:
        return min((left, up, corner), key=lambda value: abs(left + up - corner - value))
    return (0, left, up, (left + up) // 2)[kind]


class PackageTexts(unittest.TestCase):
    def test_desktop_files_are_valid(self):
        need("desktop-file-validate", "desktop-file-utils")
        for name in DESKTOP_FILES:
            self.assertEqual(run("desktop-file-validate", PACKAGING / name), "")

    def test_metainfo_is_valid(self):
        need("appstreamcli", "appstream")
        run("appstreamcli", "validate", "--no-net", BUILD / "packaging" / f"{ID}.metainfo.xml")

    def test_metainfo_tells_the_version(self):
        root = ElementTree.parse(BUILD / "packaging" / f"{ID}.metainfo.xml").getroot()
        self.assertEqual(root.find("releases/release").get("version"), VERSION)

    def test_changelog_begins_with_the_version(self):
        text = (SOURCE / "CHANGELOG.md").read_text(encoding="utf-8")
        first = re.search(r"^## (\S+) \((unreleased|\d{4}-\d\d-\d\d)\)$", text, re.M)
        self.assertIsNotNone(first, "no heading like '## 1.2.3 (2026-01-31)'")
        self.assertEqual(first.group(1), VERSION)

    def test_copyright_has_the_words_of_the_license(self):
        def words(text):
            return [word for word in text.split() if word != "."]
        license_words = words((SOURCE / "LICENSE").read_text(encoding="utf-8").partition("\n\n")[2])
        text = (PACKAGING / "copyright").read_text(encoding="utf-8")
        holder = license_words[:license_words.index("Permission")]
        self.assertIn(" ".join(holder).replace("Copyright (c) ", "Copyright: "), text)
        self.assertEqual(words(text.rpartition("License: Expat\n")[2]),
                         license_words[len(holder):])

    def test_one_name_everywhere(self):
        root = ElementTree.parse(BUILD / "packaging" / f"{ID}.metainfo.xml").getroot()
        self.assertEqual(root.findtext("id"), ID)
        self.assertEqual(root.findtext("launchable"), DESKTOP_FILES[0])
        self.assertEqual(root.findtext("icon"), ID)
        for name in DESKTOP_FILES:
            self.assertIn(f"\nIcon={ID}\n", (PACKAGING / name).read_text(encoding="utf-8"))
        self.assertIn(f'setDesktopFileName(QStringLiteral("{ID}"))',
                      (SOURCE / "src/main.cpp").read_text(encoding="utf-8"))

    def test_icons_have_their_sizes(self):
        for size in ICON_SIZES:
            width, height, _ = pixels(PACKAGING / f"icons/{size}.png")
            self.assertEqual((width, height), (size, size))

    def test_icons_are_current(self):
        need("rsvg-convert", "librsvg2-bin")
        with tempfile.TemporaryDirectory() as folder:
            run(PACKAGING / "render-icons", folder)
            rendered = sorted(file.name for file in Path(folder).iterdir())
            kept = sorted(file.name for file in (PACKAGING / "icons").glob("*.png"))
            self.assertEqual(kept, rendered)
            for name in kept:
                new, old = pixels(Path(folder) / name), pixels(PACKAGING / "icons" / name)
                # Another version of the renderer may round otherwise; no eye would see it.
                most = max(abs(a - b) for rows in zip(new[2], old[2]) for a, b in zip(*rows))
                self.assertLessEqual(most, 3, f"{name} is not of this drawing: packaging/render-icons")

    def test_pages_of_the_manual_are_clean(self):
        need("man", "man-db")
        for page in PAGES:
            # Both renderings would show an unknown macro or a broken line as a warning.
            for width in ("80", "60"):
                said = run("sh", "-c", f'man --warnings -E UTF-8 -l -Tutf8 "$0" 2>&1 >/dev/null',
                           BUILD / "packaging" / page, env={"MANWIDTH": width, "LC_ALL": "C.UTF-8",
                                                            "PATH": "/usr/bin:/bin"})
                self.assertEqual(said, "")

    def test_pages_of_the_manual_pass_the_second_reader(self):
        need("mandoc", "mandoc")
        for page in PAGES:
            self.assertEqual(run("mandoc", "-Tlint", "-Wwarning", BUILD / "packaging" / page), "")

    def test_pages_tell_every_option(self):
        programs = {"simulated-meter.1": BUILD / "simulator/simulated-meter",
                    "pulsemod-simulated.1": PACKAGING / "pulsemod-simulated"}
        for page, program in programs.items():
            text = (BUILD / "packaging" / page).read_text(encoding="utf-8").replace("\\-", "-")
            helped = set(re.findall(r"^  (--\w+)", run(program, "--help"), re.M))
            self.assertTrue(helped)
            described = set(re.findall(r"^\.B[I]? (--\w+)", text, re.M))
            self.assertEqual(described, helped, page)


if __name__ == "__main__":
    main()
