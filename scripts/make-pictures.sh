#!/usr/bin/env bash
# Renders the program's pictures (splash, icon, canvas background, wait animation)
# into resources/img with ImageMagick. The results are committed; run again to redraw.
# Usage: scripts/make-pictures.sh [background]   (one picture only, leaving the others)
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
img="$root/resources/img"
mkdir -p "$img/gif"
only="${1:-all}"
font="$(fc-match -f '%{file}' 'WenQuanYi Zen Hei' 2>/dev/null || true)"
fontarg=()
[ -n "$font" ] && fontarg=(-font "$font")

# Canvas background: the machine bed behind the work area, placed at (-157, -88) mm with
# scale 0.48, so one pixel is 0.48 mm. 1008 x 784 pixels reach from (-157, -88) to
# (327, 288) mm, the work area (0, 0)-(170, 200) in the middle. A faint grid every 5 mm,
# a little stronger every 10 mm, lines up with the work area's corner.
background() {
  local minor="" major="" mm px
  for mm in $(seq -155 5 325); do
    px=$(awk -v m="$mm" 'BEGIN { printf "%.2f", (m + 157) / 0.48 }')
    if [ $((mm % 10)) -eq 0 ]; then major+="line $px,0 $px,784 "; else minor+="line $px,0 $px,784 "; fi
  done
  for mm in $(seq -85 5 285); do
    px=$(awk -v m="$mm" 'BEGIN { printf "%.2f", (m + 88) / 0.48 }')
    if [ $((mm % 10)) -eq 0 ]; then major+="line 0,$px 1008,$px "; else minor+="line 0,$px 1008,$px "; fi
  done
  convert -size 1008x784 xc:'#565e6a' -fill none -strokewidth 1 \
    -stroke '#5d6572' -draw "$minor" -stroke '#666e7b' -draw "$major" \
    -quality 90 "$img/background4.jpg"
}

others() {
  # Splash: a night-blue globe with a laser line across it.
  convert -size 640x360 gradient:'#0b1730'-'#1d3b66' \
    -fill '#2b5d9a' -stroke '#6fb1ff' -strokewidth 3 -draw 'circle 470,180 470,40' \
    -fill none -stroke '#6fb1ff' -strokewidth 1 \
    -draw 'ellipse 470,180 140,45 0,360' -draw 'ellipse 470,180 60,140 0,360' \
    -draw 'line 330,180 610,180' -draw 'line 470,40 470,320' \
    -stroke '#ff4040' -strokewidth 3 -draw 'line 0,300 640,120' \
    "${fontarg[@]}" -stroke none -fill white -pointsize 44 -annotate +40+150 'TarnwellLaser' \
    -fill '#b9d3f5' -pointsize 22 -annotate +42+190 '激光雕刻 · Laser engraving' \
    -pointsize 16 -annotate +42+330 'V1.0.1' \
    -quality 92 "$img/earth.jpg"

  # Icon: a red laser dot over a square work area.
  convert -size 64x64 xc:none \
    -fill '#1d3b66' -stroke '#6fb1ff' -strokewidth 3 -draw 'roundrectangle 4,4 59,59 10,10' \
    -stroke '#ff4040' -strokewidth 4 -draw 'line 32,8 32,30' \
    -fill '#ff4040' -stroke none -draw 'circle 32,38 32,46' \
    -fill '#ffffff' -draw 'circle 32,38 32,41' \
    \( -clone 0 -resize 32x32 \) \( -clone 0 -resize 16x16 \) "$img/tn-logo.ico"

  # Wait animation: twelve frames of a turning arc.
  frames=()
  tmp="$(mktemp -d)"
  for i in $(seq 0 11); do
    a=$((i * 30))
    convert -size 48x48 xc:none -fill none -stroke '#3a4a5c' -strokewidth 5 -draw 'circle 24,24 24,6' \
      -stroke '#6fb1ff' -draw "arc 6,6 42,42 $a,$((a + 90))" "$tmp/f$i.png"
    frames+=("$tmp/f$i.png")
  done
  convert -delay 8 -loop 0 -dispose background "${frames[@]}" "$img/gif/wait.gif"
  rm -rf "$tmp"

  # Small arrows for combo and spin boxes of the dark stylesheet.
  convert -size 10x6 xc:none -fill '#dfe6ee' -draw 'polygon 0,0 9,0 4.5,5' "$img/arrow-down.png"
  convert -size 10x6 xc:none -fill '#dfe6ee' -draw 'polygon 0,5 9,5 4.5,0' "$img/arrow-up.png"

  # Desktop icons: the same design drawn at 256 px and reduced to the usual hicolor sizes.
  local icons="$root/packaging/icons/hicolor" size
  tmp="$(mktemp -d)"
  convert -size 256x256 xc:none \
    -fill '#1d3b66' -stroke '#6fb1ff' -strokewidth 12 -draw 'roundrectangle 16,16 239,239 40,40' \
    -stroke '#ff4040' -strokewidth 16 -draw 'line 128,32 128,120' \
    -fill '#ff4040' -stroke none -draw 'circle 128,152 128,184' \
    -fill '#ffffff' -draw 'circle 128,152 128,164' "$tmp/icon.png"
  for size in 16 24 32 48 64 128 256; do
    mkdir -p "$icons/${size}x${size}/apps"
    convert "$tmp/icon.png" -resize "${size}x${size}" -strip "$icons/${size}x${size}/apps/tarnwell-laser.png"
  done
  rm -rf "$tmp"
}

background
[ "$only" = background ] || others
echo "pictures written to $img"
