# Sourced by ./run and ./test: installs the Debian packages that are missing.

# What the program and the simulated meter are built from.
build_packages=(g++ cmake ninja-build qt6-base-dev qt6-serialport-dev fonts-dejavu-core)
# A virtual screen for a machine without a display.
screen_packages=(xvfb xauth)
# What the tests and the static checks need besides.
test_packages=(libgtest-dev clang-format clang-tidy git locales python3)

install_missing() {
  local missing=() package
  for package in "$@"; do
    if [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) != installed ]]; then
      missing+=("$package")
    fi
  done
  ((${#missing[@]})) || return 0
  local as_root=()
  if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
      echo "Missing packages: ${missing[*]}. Install them as root, or install sudo." >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}
