#!/bin/sh
# Makes the pictures of the event icons from their drawings, at both resolutions. Not part of the build: the pictures
# are kept beside the drawings. Needs rsvg-convert (Debian: librsvg2-bin).
set -eu
cd "$(dirname "$0")"
for drawing in ev-*.svg; do
    name=${drawing%.svg}
    rsvg-convert --width 24 --height 24 --output "$name.png" "$drawing"
    rsvg-convert --width 48 --height 48 --output "$name@2x.png" "$drawing"
done
