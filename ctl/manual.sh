#!/bin/bash
# Makes the manual page of kalvornctl of its help: manual.sh HELP2MAN SOURCE_DIR PAGE
set -euo pipefail
help2man=$1
source=$2
page=$3
# What is said of each command becomes a section.
sed -n '/^@ /,$p' "$source/ctl/com/quorvin/kalvornii/ctl/help.txt" |
    awk '/^@ / { printf "%s[%s]\n.nf\n", end, toupper($2); end = ".fi\n\n"; next }
        { gsub(/\\/, "\\e"); print }
        END { print ".fi" }' >"$page.more"
# It hands the command to a shell, where a path with a blank would be two words.
cd "$source"
"$help2man" --no-info --name "call the native methods of lib_kalvorn" --include "$page.more" \
    --output "$page" ./kalvornctl
rm "$page.more"
