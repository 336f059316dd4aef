#!/usr/bin/env bash
# Checks the Debian package as a user meets it: lintian finds no error, the desktop entry and
# AppStream metadata validate, it installs with apt-get, the launcher starts the program in
# ~/TarnwellLaser-work under Xvfb, both programs print the version, and removing it leaves
# none of its files behind. Runs as root (or with sudo) on a Debian 12 machine.
# Usage: scripts/package-test.sh [PACKAGE.deb]   (default: build one with scripts/package.sh)
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
version="$(sed -n 's/^project(TarnwellLaser VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
fail() { echo "package test: $*" >&2; exit 1; }
# The program must open a real window on the X server below.
unset QT_QPA_PLATFORM

deb="${1:-}"
if [ -z "$deb" ]; then
  OUT_DIR="$scratch" SKIP_INSTALL=1 "$root/scripts/package.sh"
  deb="$scratch/TarnwellLaser_${version}_amd64.deb"
fi
deb="$(readlink -f "$deb")"
[ -f "$deb" ] || fail "no package at $deb"
[ "$(basename "$deb")" = "TarnwellLaser_${version}_amd64.deb" ] || fail "unexpected name $(basename "$deb")"

echo "== lintian =="
lintian --fail-on error --info "$deb" 2>&1 | grep -v 'running with root privileges' || true
lintian --fail-on error "$deb" > /dev/null 2>&1 || fail "lintian reports errors"

echo "== desktop entry and AppStream metadata =="
dpkg-deb -x "$deb" "$scratch/tree"
desktop-file-validate "$scratch"/tree/usr/share/applications/*.desktop
appstreamcli validate --no-net "$scratch"/tree/usr/share/metainfo/*.metainfo.xml

echo "== install =="
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y "$deb"
mapfile -t files < <(dpkg -L tarnwell-laser | while read -r f; do [ -f "$f" ] && echo "$f"; done)
[ "${#files[@]}" -gt 10 ] || fail "the package installed only ${#files[@]} files"
for program in TarnwellLaser tarnwell-export tarnwell-laser; do
  [ "$(command -v "$program")" = "/usr/bin/$program" ] || fail "$program is not in /usr/bin"
done
[ "$(tarnwell-export --version)" = "tarnwell-export $version" ] || fail "tarnwell-export --version"
[ "$(TarnwellLaser --version)" = "TarnwellLaser $version" ] || fail "TarnwellLaser --version"
echo "versions: $(tarnwell-export --version), $(TarnwellLaser --version)"

echo "== start from the launcher under Xvfb =="
home="$scratch/home"
mkdir -p "$home"
HOME="$home" xvfb-run -a -s "-screen 0 1600x1000x24" bash -c '
  tarnwell-laser &
  pid=$!
  win=$("$1" 60 || true)
  kill "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
  [ -n "$win" ]
' _ "$root/scripts/wait-for-window.sh" || fail "no main window appeared"
work="$home/TarnwellLaser-work"
[ -f "$work/dataFile_en.json" ] && [ -f "$work/dataFile_zh.json" ] \
  || fail "the launcher did not set up $work"
echo "main window seen; working folder $work set up"

echo "== remove =="
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get remove -y tarnwell-laser
left=0
for f in "${files[@]}"; do
  if [ -e "$f" ]; then echo "left behind: $f" >&2; left=1; fi
done
[ "$left" -eq 0 ] || fail "files remain after removal"
[ ! -e /usr/share/tarnwell-laser ] || fail "/usr/share/tarnwell-laser remains"
echo "package test passed: ${#files[@]} files installed and removed"
