# Sourced by ./run, ./test and bench/compare: installs the Debian packages that are missing.

# What the program and the simulated meter are built from.
build_packages=(g++ cmake ninja-build qt6-base-dev qt6-serialport-dev qt6-svg-dev fonts-dejavu-core)
# A virtual screen for a machine without a display.
screen_packages=(xvfb xauth)
# What the tests and the static checks need besides.
test_packages=(clang libclang-rt-14-dev lld libgtest-dev clang-format clang-tidy git locales poppler-utils python3
  g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix wine64
  appstream at-spi2-core dbus-daemon desktop-file-utils dpkg-dev librsvg2-bin man-db mandoc x11-utils)
# What bench/compare measures beside the program; nothing else uses them.
compare_packages=(libqcustomplot-dev libqcustomplot2.1-qt6 python3-pyqt6 python3-pyqtgraph pulseview)

is_installed() {
  [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# The quiet apt-get as root; more arguments of its own come last.
quiet_install() {
  "${as_root[@]}" apt-get update -qq &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y -qq --no-install-recommends "$@" >/dev/null
}

as_root=()
((EUID == 0)) || as_root=(sudo)

install_missing() {
  local missing=() package
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  if ((${#as_root[@]})) && ! command -v sudo >/dev/null; then
    echo "Missing packages: ${missing[*]}. Install them as root, or install sudo." >&2
    return 1
  fi
  echo "Installing ${missing[*]}"
  quiet_install "${missing[@]}"
}

# Programs for Windows with 32 bits want a second architecture on the machine, which not every machine
# takes: without it their test is skipped. Tried once for each build folder; removing the named file has
# it tried again.
install_wine32() {
  local tried=build-check/wine32-not-installed added=
  if is_installed wine32:i386 || [[ -e $tried ]]; then return 0; fi
  echo "Installing wine32:i386, for one test"
  mkdir -p build-check
  if ! dpkg --print-foreign-architectures | grep -qx i386; then
    "${as_root[@]}" dpkg --add-architecture i386 && added=yes
  fi
  # An upgrade of packages of the machine's own may come with it, a removal may not.
  if quiet_install --no-remove wine32:i386 2>"$tried"; then
    rm "$tried"
    return 0
  fi
  echo "wine32:i386 cannot be installed ($tried says why): the test of the 32-bit library will be skipped"
  # The machine's own updates must not fail for the lists of an architecture that nothing uses.
  if [[ -n $added ]]; then
    { "${as_root[@]}" dpkg --remove-architecture i386 && "${as_root[@]}" apt-get update -qq; } || true
  fi
}
