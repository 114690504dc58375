#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running TarnSheets need.
# Idempotent and quiet: it asks apt only for what dpkg does not already report installed.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  nlohmann-json3-dev libsqlite3-dev sqlite3 clang-format
)
# Extra packages a caller asks for (for example the Qt toolkit): scripts/install-deps.sh qt
for extra in "$@"; do
  case "$extra" in
    qt) packages+=(qt6-base-dev libqt6sql6 libqt6sql6-sqlite libgl1-mesa-dev fonts-noto-cjk
                   fonts-dejavu-core fonts-liberation2 fonts-arphic-gbsn00lp fonts-arphic-uming) ;;
    *) echo "install-deps: unknown extra '$extra'" >&2; exit 2 ;;
  esac
done

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" != 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
