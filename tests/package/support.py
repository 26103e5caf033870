"""What the tests of the package share."""

import os
import pathlib
import shutil
import subprocess
import sys
import unittest

SKIPPED = 77  # the exit status that CTest shows as skipped

SOURCE = pathlib.Path(os.environ["PULSEMOD_SOURCE"])
BUILD = pathlib.Path(os.environ["PULSEMOD_BUILD"])
VERSION = os.environ["PULSEMOD_VERSION"]
WORK = BUILD / "package-test"
ID = "org.pelmora.PulseMod"
ICON_SIZES = (16, 22, 24, 32, 48, 64, 128, 256)


def need(tool, package):
    """Skips the test without the tool."""
    if shutil.which(tool) is None:
        raise unittest.SkipTest(f"{tool} is not installed (Debian: {package})")


def run(*command, **options):
    """Output of a command, both streams; a failure fails the test with them."""
    result = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True, check=False, **options)
    if result.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))}: {result.returncode}\n{result.stdout}")
    return result.stdout


def package():
    """The package that was built; skips without one."""
    found = list((WORK / "deb").glob("*.deb"))
    if not found:
        raise unittest.SkipTest("there is no package: package.build was skipped")
    if len(found) > 1:
        raise AssertionError(f"more than one package: {found}")
    return found[0]


def main():
    program = unittest.main(module="__main__", exit=False, verbosity=2)
    result = program.result
    if not result.wasSuccessful() or result.testsRun == 0:
        sys.exit(1)
    sys.exit(SKIPPED if result.skipped else 0)
