#!/bin/bash
# The library's dynamic symbol table defines its two entry points and the one exported global.
set -euo pipefail
defined=$(readelf --dyn-syms --wide "$1" |
    awk '$5 != "LOCAL" && $7 ~ /^[0-9]+$/ {print $8}' | LC_ALL=C sort | tr '\n' ' ')
expected="JNI_OnLoad JNI_OnUnload g_deathRecipient "
[ "$defined" = "$expected" ] || { echo "$1 defines: $defined"; exit 1; }
