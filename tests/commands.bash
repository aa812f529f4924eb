# shellcheck shell=bash
# What the tests of commands share, for bats and for scripts that end with the first failure.

# expect WHAT EXPECTED FOUND
expect() {
    [ "$2" != "$3" ] || return 0
    printf '%s: expected\n%s\nfound\n%s\n' "$1" "$2" "$3"
    return 1
}

# holds WHAT TEXT FILE
holds() {
    if [ -z "$2" ] || grep -qF -- "$2" "$3"; then return 0; fi
    printf '%s: expected in %s\n%s\nfound\n%s\n' "$1" "$3" "$2" "$(<"$3")"
    return 1
}

# ends STATUS COMMAND...: with that status; what it writes goes to the files out and err.
ends() {
    local status=0
    timeout 60 "${@:2}" >out 2>err || status=$?
    [ "$status" != "$1" ] || return 0
    expect "status of ${*:2}" "$1" "$status" || cat err
    return 1
}

# await COMMAND...: until it succeeds, for a minute.
await() {
    local i
    for ((i = 0; i < 600; i++)); do
        ! "$@" || return 0
        sleep 0.1
    done
    printf 'never: %s\n' "$*"
    return 1
}

has_or_does() { grep -qF -- "$2" "$1" || { "${@:3}"; false; }; }

# until_holds FILE TEXT [COMMAND...]: waits, and does that each time.
until_holds() { await has_or_does "$@" || holds "in time" "$2" "$1"; }

# on_terminal "ROWS COLUMNS" COMMAND...: what the command writes on a terminal, without carriage returns.
on_terminal() {
    local size=$1 command
    printf -v command '%q ' "${@:2}"
    script -qec "stty rows ${size% *} cols ${size#* }; $command" /dev/null </dev/null | sed -u 's/\r//g'
}
