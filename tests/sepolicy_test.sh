#!/bin/bash
# The sample policy compiles; its part for the misc partition says what the platform forbids, as
# docs/device.md tells, and nothing else: sepolicy_test.sh SOURCE_DIR
set -euo pipefail
cd "$1/sepolicy"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# What the sample takes from the platform's policy, in short.
cat >"$work/classes" <<'EOF'
class process class binder class fd class service_manager class hwservice_manager
class dir class lnk_file class blk_file
sid kernel
class process { transition }
class binder { call transfer }
class fd { use }
class service_manager { find }
class hwservice_manager { find }
class dir { search }
class lnk_file { read }
class blk_file { open read write }
define(`binder_call', `
allow $1 $2:binder { call transfer };
allow $2 $1:binder transfer;
allow $1 $2:fd use;
')
define(`hwbinder_use', `binder_call($1, hwservicemanager)')
define(`app_domain', `typeattribute $1 appdomain;')
attribute domain;
attribute coredomain;
attribute appdomain;
attribute dev_type;
type shell, domain;
type hwservicemanager, domain;
type block_device, dev_type;
type misc_block_device, dev_type;
EOF
echo 'neverallow appdomain dev_type:blk_file { read write };' >"$work/neverallow"
printf '%s\n' 'role r;' 'role r types kalvorn_app;' 'user u roles r;' 'sid kernel u:r:kalvorn_app' >"$work/contexts"

# compiles FILE...: the sample does, with these files beside it and the device's types.
compiles() {
    m4 --fatal-warnings "$work/classes" kalvorn.te | grep -oE '\bplaceholder_[a-z_]+' | sort -u |
        sed 's/.*/type &;/' >"$work/types"
    m4 --fatal-warnings "$work/classes" "$work/types" kalvorn.te "$@" "$work/contexts" >"$work/policy"
    checkpolicy -o "$work/compiled" "$work/policy" >"$work/said" 2>&1
}

failed=0
compiles kalvorn_misc.te || { echo "The sample does not compile:"; cat "$work/said"; failed=1; }
compiles "$work/neverallow" || { echo "The platform forbids the sample:"; cat "$work/said"; failed=1; }
if compiles kalvorn_misc.te "$work/neverallow"; then
    echo "The platform does not forbid kalvorn_misc.te, as docs/device.md says."
    failed=1
fi
grep -q 'neverallow.*violated.*kalvorn_app misc_block_device:blk_file' "$work/said" ||
    { echo "kalvorn_misc.te fails otherwise:"; cat "$work/said"; failed=1; }
exit "$failed"
