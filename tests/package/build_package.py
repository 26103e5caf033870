#!/usr/bin/env python3
"""Builds the package of the build folder, without compiling anything."""

import shutil
import sys

import support


def main():
    for tool, package in (("cpack", "cmake"), ("dpkg-shlibdeps", "dpkg-dev")):
        if shutil.which(tool) is None:
            print(f"skipped: {tool} is not installed (Debian: {package})")
            return support.SKIPPED
    folder = support.WORK / "deb"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    print(support.run("cpack", "--config", support.BUILD / "CPackConfig.cmake", "-B", folder,
                      cwd=support.BUILD))
    shutil.rmtree(folder / "_CPack_Packages")
    print(support.package().name)
    return 0


if __name__ == "__main__":
    sys.exit(main())
