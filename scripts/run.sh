#!/usr/bin/env bash
# Installs what the program needs, builds it (Release) and starts it in its own
# working folder, since it reads, writes and deletes fixed file names there.
# Without a display it runs under Xvfb, saves a screenshot of the main window
# into the working folder and exits.
# Usage: scripts/run.sh   (TARNWELL_WORKDIR overrides ~/TarnwellLaser-work;
#                          SKIP_INSTALL=1 skips the package step)
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
work="${TARNWELL_WORKDIR:-$HOME/TarnwellLaser-work}"

if [ "${SKIP_INSTALL:-0}" != "1" ]; then
  "$root/scripts/install-deps.sh"
fi
"$root/scripts/build.sh" "$root/build"

# The installed launcher, pointed at this build: it makes the working folder, copies the
# starting material libraries in when absent and starts the program there.
export TARNWELL_WORKDIR="$work"
export TARNWELL_PROGRAM="$root/build/app/TarnwellLaser"
export TARNWELL_MATERIALS="$root/resources/materials"
program="$root/packaging/tarnwell-laser"
echo "Working folder: $work"

if [ -n "${DISPLAY:-}" ]; then
  exec "$program"
fi

shot="$work/TarnwellLaser-screenshot.png"
echo "No display: starting TarnwellLaser under Xvfb to take a screenshot."
xvfb-run -a -s "-screen 0 1600x1000x24" bash -c '
  "$1" &
  pid=$!
  # The splash stays two seconds; then the main window appears.
  win=$("$3" 30 || true)
  sleep 1
  if [ -n "$win" ]; then import -window "$win" "$2"; else import -window root "$2"; fi
  kill "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
' _ "$program" "$shot" "$root/scripts/wait-for-window.sh"
echo "Screenshot of the main window saved to: $shot"
