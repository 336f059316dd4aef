#!/usr/bin/env bash
# Waits up to SECONDS for TarnwellLaser's main window on $DISPLAY and prints its window id;
# exits 1 when none appears. The splash comes first, so the title is the test.
# Usage: scripts/wait-for-window.sh SECONDS
set -u
for _ in $(seq 1 $(( ${1:-30} * 2 ))); do
  win=$(xdotool search --onlyvisible --name "TarnwellLaser V" 2>/dev/null | head -n 1 || true)
  if [ -n "$win" ]; then
    echo "$win"
    exit 0
  fi
  sleep 0.5
done
exit 1
