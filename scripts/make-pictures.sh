#!/usr/bin/env bash
# Renders the program's pictures (splash, icon, canvas background, wait animation)
# into resources/img with ImageMagick. The results are committed; run again to redraw.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
img="$root/resources/img"
mkdir -p "$img/gif"
font="$(fc-match -f '%{file}' 'WenQuanYi Zen Hei' 2>/dev/null || true)"
fontarg=()
[ -n "$font" ] && fontarg=(-font "$font")

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

# Canvas background: a light board with a faint 10 px grid.
convert -size 200x200 xc:'#f4f4f0' \
  -fill none -stroke '#e2e2dc' -strokewidth 1 \
  -draw "$(for i in $(seq 0 10 200); do printf 'line %d,0 %d,200 line 0,%d 200,%d ' $i $i $i $i; done)" \
  -quality 90 "$img/background4.jpg"

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
echo "pictures written to $img"

# Small arrows for combo and spin boxes of the dark stylesheet.
convert -size 10x6 xc:none -fill '#dfe6ee' -draw 'polygon 0,0 9,0 4.5,5' "$img/arrow-down.png"
convert -size 10x6 xc:none -fill '#dfe6ee' -draw 'polygon 0,5 9,5 4.5,0' "$img/arrow-up.png"

# Desktop icons: the same design drawn at 256 px and reduced to the usual hicolor sizes.
icons="$root/packaging/icons/hicolor"
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
echo "desktop icons written to $icons"
