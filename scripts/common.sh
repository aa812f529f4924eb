# shellcheck shell=bash
# What the commands share. Each sources it, and may have told in $usage what it takes; one that another
# command starts speaks in that one's name, which is then in KALVORN_COMMAND.
command=${KALVORN_COMMAND:-${0##*/}}

# The devices that need no file of their own.
device_folder=${BASH_SOURCE[0]%/*}/../simulator/devices
named=("$device_folder"/*.device)
named=("${named[@]##*/}")
export KALVORN_DEVICES="${named[*]%.device}"

is_device() { [[ " $KALVORN_DEVICES " == *" $1 "* ]]; }

# describe DEVICE: sets $text to what the first line of its file says.
describe() {
    local file=$1
    ! is_device "$1" || file=$device_folder/$1.device
    read -r text <"$file"
    [[ $text = "# "* ]] || text="# What its file says"
    text=${text#??} text=${text%.}
    text=${text,}
}

# list_devices COLUMN: as the usage of a command shows them.
list_devices() {
    local device text
    for device in $KALVORN_DEVICES; do
        describe "$device"
        [ "$device" != mixed ] || text+=" (default)"
        printf '%*s%-7s %s\n' "$1" "" "$device" "$text"
    done
}

# shellcheck disable=SC2034
# Sets $device to the name of a device, or to the full path of the file of one.
find_device() {
    device=$1
    is_device "$1" && return
    [[ $1 = */* || $1 = *.device ]] || refuse "no device \"$1\""
    if [ ! -f "$1" ] || [ ! -r "$1" ]; then refuse "cannot read $1"; fi
    device=$(realpath -- "$1")
}

# check_device BUILD_DIR DEVICE: once it is built, what is wrong in the file of a device.
check_device() {
    local wrong
    is_device "$2" || wrong=$("$1/check_device" "$2" 2>&1) && return
    printf '%s: %s\n' "$command" "$wrong" >&2
    exit 2
}

# What was asked cannot be.
refuse() {
    printf '%s: %s\n' "$command" "$1" >&2
    if [ -n "${usage-}" ] && [ "$command" = "${0##*/}" ]; then printf '%s\n' "$usage" >&2; fi
    exit 2
}

# What was asked can be, but not here and now.
cannot() {
    printf '%s: %s\n' "$command" "$1" >&2
    exit 3
}

# Whether a folder takes some bytes more; $trouble tells why not.
has_room() {
    local probe=$1/.room.$$
    trouble=$({ head -c 4096 /dev/zero >"$probe"; } 2>&1) && rm -f -- "$probe" && return
    trouble=${trouble##*: }
    rm -f -- "$probe"
    return 1
}

# shellcheck disable=SC2034
# Sets $size to the "ROWS COLUMNS" of the terminal that standard output is, or to nothing.
measure_terminal() {
    { size=$(stty size <&3 2>/dev/null) || size=; } 3>&1
}

# The name of this machine's processor.
processor() { sed -n 's/^model name[^:]*: //p; T; q' /proc/cpuinfo | grep . || uname -m; }
