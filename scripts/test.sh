#!/usr/bin/env bash
# Installs what the project needs, checks the source layout, builds it and runs the whole
# test suite twice: once as released, once under AddressSanitizer and UndefinedBehaviorSanitizer;
# then fuzzes every reader for 20 seconds and checks the Debian package.
# Usage: scripts/test.sh            (set SKIP_INSTALL=1 to skip the package step)
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"

if [ "${SKIP_INSTALL:-0}" != "1" ]; then
  "$root/scripts/install-deps.sh"
fi

export QT_QPA_PLATFORM=offscreen
jobs="$(nproc)"

echo "== Source layout (.clang-format) =="
"$root/scripts/format.sh" --check

echo "== Release build and tests =="
"$root/scripts/build.sh" "$root/build"
(cd "$root/build" && ctest --output-on-failure --parallel "$jobs")

echo "== Sanitizer build and tests (ASan + UBSan) =="
"$root/scripts/build.sh" "$root/build-asan" -DCMAKE_BUILD_TYPE=Debug -DTARNWELL_SANITIZE=ON
# Qt keeps some allocations until exit on purpose; leaks are not counted.
export ASAN_OPTIONS="detect_leaks=0:halt_on_error=1:abort_on_error=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
(cd "$root/build-asan" && ctest --output-on-failure --parallel "$jobs")

echo "== Fuzzing, 20 s per target =="
# The fuzz targets keep their own sanitizer settings (leaks counted per input).
env -u ASAN_OPTIONS -u UBSAN_OPTIONS "$root/scripts/fuzz.sh" 20

echo "== Debian package: build, lintian, install, start, remove =="
"$root/scripts/package-test.sh"
