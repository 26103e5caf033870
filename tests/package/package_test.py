#!/usr/bin/env python3
"""The package itself: what it says of itself, what is in it, and that it goes as it came."""

import gzip
import os
import re
import tempfile
import unittest
from pathlib import Path

from support import ICON_SIZES, ID, SOURCE, VERSION, main, need, package, run

DOC = "usr/share/doc/pulsemod"
PROGRAMS = {"usr/bin/pulsemod", "usr/bin/pulsemod-simulated", "usr/bin/simulated-meter"}
FILES = PROGRAMS | {
    "usr/lib/pulsemod/simulated-meter/libgpib.so.0",
    f"usr/share/applications/{ID}.desktop",
    f"usr/share/applications/{ID}.SimulatedMeter.desktop",
    f"usr/share/metainfo/{ID}.metainfo.xml",
    f"usr/share/icons/hicolor/scalable/apps/{ID}.svg",
    "usr/share/man/man1/pulsemod.1.gz",
    "usr/share/man/man1/pulsemod-simulated.1.gz",
    "usr/share/man/man1/simulated-meter.1.gz",
    f"{DOC}/README.md",
    f"{DOC}/changelog.Debian.gz",
    f"{DOC}/changelog.gz",
    f"{DOC}/copyright",
    f"{DOC}/performance.md",
    f"{DOC}/reliability.md",
    f"{DOC}/simulated-meter.md",
    f"{DOC}/user-guide.md",
} | {f"usr/share/icons/hicolor/{size}x{size}/apps/{ID}.png" for size in ICON_SIZES} \
  | {f"{DOC}/pictures/{file.name}" for file in (SOURCE / "docs/pictures").glob("*.png")}


def files_below(root):
    """Everything below a folder, folders too, relative to it."""
    return {str(path.relative_to(root)) for path in root.rglob("*")}


class Package(unittest.TestCase):
    def setUp(self):
        need("dpkg-deb", "dpkg")
        self.deb = package()
        folder = tempfile.TemporaryDirectory(prefix="pulsemod-package-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def unpack(self):
        run("dpkg-deb", "-x", self.deb, self.root)

    def field(self, name):
        return run("dpkg-deb", "-f", self.deb, name).strip()

    def test_tells_what_it_is(self):
        self.assertEqual(self.field("Package"), "pulsemod")
        self.assertEqual(self.field("Version"), f"{VERSION}-1")
        self.assertEqual(self.field("Section"), "electronics")
        self.assertEqual(self.field("Priority"), "optional")
        self.assertEqual(self.field("Architecture"), run("dpkg", "--print-architecture").strip())
        summary, *text = self.field("Description").splitlines()
        self.assertEqual(summary, "Bench program for a peak power meter")
        self.assertIn(" A simulated meter comes with it, with a menu entry of its own, so that", text)
        self.assertNotIn("&", "".join(text))
        self.assertEqual([line for line in text if len(line) > 80 or not line.startswith(" ")], [])

    def test_depends_on_what_the_programs_link_and_on_no_gpib_library(self):
        depends = self.field("Depends")
        for name in ("libc6", "libqt6core6", "libqt6gui6", "libqt6serialport6", "libqt6widgets6",
                     "libstdc++6"):
            self.assertRegex(depends, rf"(^|, ){re.escape(name)} \(>= ")
        self.assertNotIn("gpib", depends)

    def test_runs_no_scripts(self):
        control = run("sh", "-c", 'dpkg-deb --ctrl-tarfile "$0" | tar -t', self.deb).split()
        self.assertEqual(sorted(control), ["./control", "./md5sums"])

    def test_holds_these_files_and_no_others(self):
        self.unpack()
        found = {name for name in files_below(self.root) if not (self.root / name).is_dir()}
        self.assertEqual(found, FILES)

    def test_gives_each_file_to_root_with_the_usual_rights(self):
        for line in run("dpkg-deb", "-c", self.deb).splitlines():
            rights, owner, _, _, _, name = line.split(maxsplit=5)
            folder, path = name.endswith("/"), name.removeprefix("./")
            self.assertEqual(owner, "root/root", name)
            self.assertEqual(rights, "drwxr-xr-x" if folder
                             else "-rwxr-xr-x" if path in PROGRAMS else "-rw-r--r--", name)

    def test_programs_are_stripped_and_name_no_folder_of_the_build(self):
        need("readelf", "binutils")
        self.unpack()
        for name in PROGRAMS - {"usr/bin/pulsemod-simulated"} | {"usr/lib/pulsemod/simulated-meter/libgpib.so.0"}:
            self.assertNotIn(".symtab", run("readelf", "-SW", self.root / name), name)
            self.assertNotRegex(run("readelf", "-dW", self.root / name), "R(UN)?PATH", name)

    def test_compressed_texts_hold_neither_name_nor_time(self):
        self.unpack()
        for path in self.root.rglob("*.gz"):
            head = path.read_bytes()[:10]
            self.assertEqual(head[3:8], bytes(5), path)
            self.assertGreater(len(gzip.decompress(path.read_bytes())), 50, path)

    def test_changelogs_begin_with_the_version(self):
        self.unpack()
        def text(name):
            return gzip.decompress((self.root / DOC / name).read_bytes()).decode()
        self.assertTrue(text("changelog.Debian.gz").startswith(f"pulsemod ({VERSION}-1) "))
        self.assertTrue(text("changelog.gz").startswith(f"# Changelog\n\n## {VERSION} "))

    def test_links_of_the_documents_lead_to_what_is_installed(self):
        self.unpack()
        checked = 0
        for file in (self.root / DOC).glob("*.md"):
            for target in re.findall(r"\]\(([^)#]+)", file.read_text(encoding="utf-8")):
                if "://" in target:
                    continue
                checked += 1
                self.assertTrue((self.root / DOC / target).is_file(), f"{file.name}: {target}")
        self.assertGreater(checked, 5)

    def test_menu_entries_start_programs_of_the_package(self):
        self.unpack()
        for file in (self.root / "usr/share/applications").iterdir():
            text = file.read_text(encoding="utf-8")
            program = re.search(r"^Exec=(\S+)$", text, re.M).group(1)
            self.assertTrue(os.access(self.root / "usr/bin" / program, os.X_OK), file.name)

    def test_leaves_nothing_when_it_is_removed(self):
        if os.geteuid() != 0:
            raise unittest.SkipTest("dpkg installs as root only")
        database = self.root / "var/lib/dpkg"
        for folder in ("info", "updates", "triggers"):
            (database / folder).mkdir(parents=True)
        (database / "status").touch()
        before = files_below(self.root)
        dpkg = ["dpkg", f"--root={self.root}", "--log=/dev/null", "--force-depends"]
        run(*dpkg, "--install", self.deb)
        self.assertLessEqual(FILES, files_below(self.root))
        self.assertEqual(self.status(), "install ok installed")
        run(*dpkg, "--remove", "pulsemod")
        self.assertEqual(self.status(), "")
        left = {name for name in files_below(self.root) - before if not name.startswith("var/lib/dpkg")}
        self.assertEqual(left, set())

    def status(self):
        """What dpkg's database says of the package; nothing when it does not know it."""
        text = (self.root / "var/lib/dpkg/status").read_text(encoding="utf-8")
        found = re.search(r"^Package: pulsemod\nStatus: (.*)$", text, re.M)
        return found.group(1) if found else ""

    def test_is_clean_for_the_packagers_checker(self):
        need("lintian", "lintian")
        self.assertEqual(run("lintian", "--allow-root", "--no-cfg", "--suppress-tags-from-file",
                             SOURCE / "packaging/lintian-tags", self.deb), "")


if __name__ == "__main__":
    main()
