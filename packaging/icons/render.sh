#!/bin/sh
# For developers: draws the PNGs beside tessaray.svg anew. Needs rsvg-convert. Small sizes are kept in the
# repository, so that a build needs no SVG renderer.
set -eu
cd "$(dirname "$0")"
for size in 16 24 32 48 64 128 256 512; do
    rsvg-convert --width "$size" --height "$size" tessaray.svg --output "tessaray-$size.png"
done
