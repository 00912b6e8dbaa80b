#!/bin/bash
# A library needs the base library of wxWidgets and nothing of a graphical toolkit:
# linkage.sh LIBRARY
set -euo pipefail

needed=$(ldd "$1")
echo "$needed"

if ! grep -q 'libwx_baseu-' <<<"$needed"; then
    echo "the base library of wxWidgets is missing"
    exit 1
fi
if grep -E 'libwx_(gtk|x11|qt)|lib(gtk|gdk|X11|xcb|wayland|pango|cairo|Qt|GL)' <<<"$needed"; then
    echo "these belong to a graphical toolkit"
    exit 1
fi
