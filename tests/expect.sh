# What the tests of commands share, to be sourced: the folder $work, which is removed at the end, $failed,
# which is the status then, and expect.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# expect WHAT EXPECTED FOUND
expect() {
    [ "$2" != "$3" ] || return 0
    printf '%s: expected\n%s\nfound\n%s\n' "$1" "$2" "$3"
    failed=1
}
