#!/bin/sh
# make-icns.sh ICONS OUTPUT: Tessaray.icns from the PNGs in the folder ICONS. Runs on macOS, which has iconutil.
set -eu
icons=$1 output=$2
set_folder=$(mktemp -d)/Tessaray.iconset
mkdir "$set_folder"
trap 'rm -r "$(dirname "$set_folder")"' EXIT
for size in 16 32 128 256 512; do
    cp "$icons/tessaray-$size.png" "$set_folder/icon_${size}x$size.png"
done
for size in 16 32 128 256; do
    twice=$((size * 2))
    cp "$icons/tessaray-$twice.png" "$set_folder/icon_${size}x$size@2x.png"
done
iconutil --convert icns --output "$output" "$set_folder"
