#!/usr/bin/env bash
# Installs every Debian package TarnwellLaser needs to build, test and run.
# Safe to run again: apt-get skips what is already there.
set -euo pipefail

PACKAGES=(
  # build, and the source layout check
  cmake ninja-build g++ pkg-config clang-format
  # Qt 5 and libraries
  qtbase5-dev libqt5svg5-dev libqt5serialport5-dev libqt5opengl5-dev
  qttools5-dev qttools5-dev-tools
  nlohmann-json3-dev libqrencode-dev libpotrace-dev libpolyclipping-dev
  # Qt's own catalogues, so its dialogs follow the interface language
  qttranslations5-l10n
  # tests and looking at the program
  xvfb xauth xdotool socat imagemagick fonts-wqy-zenhei fonts-dejavu-core
  libgl1-mesa-dri
  # fuzzing (clang's libFuzzer)
  clang libclang-rt-14-dev
  # the Debian package and its checks
  dpkg-dev file desktop-file-utils appstream lintian
)

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi

export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update
$SUDO apt-get install -y --no-install-recommends "${PACKAGES[@]}"
