#!/usr/bin/env bash
# Builds the Debian package TarnwellLaser_<version>_amd64.deb with CPack into the
# repository's top folder (or OUT_DIR), compiled with Debian's hardening flags.
# Usage: scripts/package.sh [BUILD_DIR]   (default build-package; SKIP_INSTALL=1 skips apt)
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build-package}"
out="${OUT_DIR:-$root}"

if [ "${SKIP_INSTALL:-0}" != "1" ]; then
  "$root/scripts/install-deps.sh"
fi

# The flags a Debian package build uses: fortified functions, stack protector, relro, now.
export DEB_BUILD_MAINT_OPTIONS="hardening=+all"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNWELL_TESTS=OFF \
  -DCMAKE_CXX_FLAGS="$(dpkg-buildflags --get CPPFLAGS) $(dpkg-buildflags --get CXXFLAGS)" \
  -DCMAKE_EXE_LINKER_FLAGS="$(dpkg-buildflags --get LDFLAGS)"
cmake --build "$build" --parallel "$(nproc)"
(cd "$build" && cpack -G DEB)

deb="$(ls "$build"/TarnwellLaser_*_amd64.deb)"
mkdir -p "$out"
cp "$deb" "$out/"
echo "Package: $out/$(basename "$deb")"
