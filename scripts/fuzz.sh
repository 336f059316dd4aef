#!/usr/bin/env bash
# Builds the fuzz targets with clang and libFuzzer (ASan + UBSan) in build-fuzz and runs
# each one for SECONDS, starting from its seed corpus in tests/fuzz/corpus/<target>/.
# Usage: scripts/fuzz.sh SECONDS [TARGET...]   (default: every target of tests/fuzz)
# A target that breaks an invariant or crashes stops the script with status 1; the input
# that did it is saved in build-fuzz/fuzz-artifacts/.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${1:?usage: scripts/fuzz.sh SECONDS [TARGET...]}"
shift
build="${FUZZ_BUILD_DIR:-$root/build-fuzz}"

if [ ! -f "$build/CMakeCache.txt" ]; then
  CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARNWELL_FUZZ=ON
fi
cmake --build "$build" --target fuzz_all --parallel "$(nproc)"

targets=("$@")
if [ "${#targets[@]}" -eq 0 ]; then
  mapfile -t targets < "$build/tests/fuzz/targets.txt"
fi

artifacts="$build/fuzz-artifacts"
mkdir -p "$artifacts"
failed=0
summary=()
for target in "${targets[@]}"; do
  [ -n "$target" ] || continue
  # The seeds stay as committed; what the run learns goes into a corpus of its own.
  corpus="$build/fuzz-corpus/$target"
  mkdir -p "$corpus"
  log="$build/fuzz-$target.log"
  echo "== $target: $seconds s =="
  status=0
  "$build/tests/fuzz/$target" "$corpus" "$root/tests/fuzz/corpus/$target" \
    -max_total_time="$seconds" -max_len=4096 -timeout=20 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$artifacts/$target-" > "$log" 2>&1 || status=$?
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -n 1)
  cov=$(grep -o 'cov: [0-9]* ft: [0-9]*' "$log" | tail -n 1 || true)
  line="$target: ${execs:-?} runs, ${rate:-?}/s, ${cov:-no coverage line}"
  if [ "$status" -ne 0 ]; then
    line="$line, FAILED (status $status, see $log)"
    grep -E -A4 'invariant broken|ERROR:|SUMMARY' "$log" | head -n 20 || true
    failed=1
  fi
  summary+=("$line")
  echo "$line"
done

echo "== fuzzing summary =="
printf '%s\n' "${summary[@]}"
exit "$failed"
