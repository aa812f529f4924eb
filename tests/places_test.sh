#!/bin/bash
# Each native method and each service stands in every place that has to have it; names what is missing,
# and from where: places_test.sh SOURCE_DIR
set -euo pipefail
cd "$1"
export LC_ALL=C
failed=0

java=java/com/quorvin/kalvornii/KvNativeInterface.java
demo=tools/demo/com/quorvin/kalvornii/demo/RunningTest.java
table=ctl/com/quorvin/kalvornii/ctl/Services.java

# every NAMES PLACE WHAT: each of these names is in that place's.
every() {
    local missing
    missing=$(comm -23 <(echo "$1") <(echo "$2"))
    [ -n "$1" ] && [ -z "$missing" ] && return 0
    printf '%s:\n%s\n' "$3" "$missing"
    failed=1
}

# names PATTERN [FILE...]: the last name in each match; there have to be some.
names() {
    { grep -ohE -- "$@" || echo "places_test: nothing is like $1" >&2; } |
        sed -E 's/[^A-Za-z0-9_]*$//; s/.*[^A-Za-z0-9_]//' | sort
}

check_methods() {
    local declared table sampled
    declared=$(names '\bnative [^ ]+ [A-Za-z0-9]+\(' "$java")
    table=$(names '^[A-Z_]+\( *[A-Za-z0-9]+,' jni/methods.inc)
    sampled=$(names '^[A-Za-z0-9]+' samples/methods.samples)

    every "$declared" "$table" "$java declares, but jni/methods.inc has no row for"
    every "$table" "$declared" "jni/methods.inc has a row too many, or $java does not declare"
    every "$declared" "$sampled" "samples/methods.samples has no sample of"
}

check_services() {
    local services
    services=$(names '^ .*services(, |\.emplace_back\()"[a-z_]+"' simulator/aidl_services.cpp)
    every "$services" "$(names '^ +\{"[a-z_]+"' tests/every_service.h)" \
        "kServices in tests/every_service.h has no row for"
    every "$services" "$(names 'Map\.entry\("[a-z_]+"' "$demo")" "SERVES in $demo does not tell of"
    every "$services" "$(names '^        add\("[a-z_]+"' "$table")" "The table in $table has no"
    every "$services" "$(names '^kalvorn_aidl(_and_hidl)?\(.[a-z_]+' sepolicy/kalvorn.te)" \
        "sepolicy/kalvorn.te does not allow"
}

# connected BACKEND: the C++ name of the interface and the instance, for each connector.
connected() {
    local interface instance
    sed -nE 's/^[A-Z_]+\(Init.* (I[A-Za-z]+), g_[A-Za-z]+, "([a-z0-9_]+)".*/\1 \2/p' "$1/services.inc" |
        while read -r interface instance; do echo "$(interface "$1" "$interface")/$instance"; done
    # Connected by a function of its own, and to no instance but this.
    [ "$1" = hidl ] || echo "$(interface aidl IFingerprint)$(grep -oE '/default' aidl/fingerprint.cpp)"
}

# interface BACKEND NAME: its qualified name.
interface() { sed -nE "s/^using (aidl::)?(vendor::[A-Za-z0-9_:]+::$2);/\2/p" "$1/services.h"; }

# Names as AIDL and as HIDL write them, of C++ ones.
aidl_names() { sed 's/::/./g' | sort; }
hidl_names() { sed -E 's/::V([0-9]+)_([0-9]+)::/@\1.\2;/; s/::/./g; s/;/::/' | sort; }

# documented INTERFACE: the names in the table for device trees that are like it.
documented() { grep -oE "\| \`vendor[^\`]*$1[A-Za-z]+/[a-z0-9_]+" docs/device.md | sed 's/.*`//' | sort; }

# in_matrix FORMAT NAME: those in the sample of a compatibility matrix, a NAME being made of package,
# version, interface and instance.
in_matrix() {
    local entry='<name>(.*)</name><version>([0-9.]+).*<name>(.*)</name><instance>(.*)</instance>'
    tr -d '\n' <vintf/framework_compatibility_matrix.xml | sed 's,</hal>,&\n,g' |
        sed -nE "s,.*<hal format=\"$1\".*$entry.*,$2,p" | sort
}

check_instance_names() {
    local aidl hidl
    aidl=$(connected aidl | aidl_names)
    hidl=$(connected hidl | hidl_names)
    every "$aidl" "$(documented '[.]I')" "The table in docs/device.md has no AIDL service"
    every "$(documented '[.]I')" "$aidl" "The table in docs/device.md has an AIDL service too many, or wrong"
    every "$hidl" "$(documented '::I')" "The table in docs/device.md has no HIDL service"
    every "$(documented '::I')" "$hidl" "The table in docs/device.md has a HIDL service too many, or wrong"
    [ "$(in_matrix aidl '\1.\3/\4'; in_matrix hidl '\1@\2::\3/\4')" = "$aidl"$'\n'"$hidl" ] || {
        echo "vintf/framework_compatibility_matrix.xml has other services"
        failed=1
    }
}

check_methods
check_services
check_instance_names
exit "$failed"
