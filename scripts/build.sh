#!/usr/bin/env bash
# Configures and builds TarnwellLaser with CMake and Ninja.
# Usage: scripts/build.sh [BUILD_DIR] [extra cmake arguments...]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
shift || true
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release "$@"
cmake --build "$build" --parallel "$(nproc)"
