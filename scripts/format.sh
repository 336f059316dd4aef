#!/usr/bin/env bash
# Lays out every tracked C++ file by the project's .clang-format (clang-format 14, Debian 12's).
# Usage: scripts/format.sh [--check]   (--check changes nothing and fails when a file would change)
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = "--check" ]; then
  clang-format --dry-run --Werror "${files[@]}"
else
  clang-format -i "${files[@]}"
fi
