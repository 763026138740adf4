# shellcheck shell=bash
# How a case says what it found.

# Lines as one: for a comparison of several values.
in_a_line() { paste -s -d ' '; }
not() { ! "$@" >/dev/null 2>&1; }
uptime_of_machine() { cut -d ' ' -f 1 /proc/uptime; }

# eventually COMMAND...: waits for it to succeed. The bound only ends a case that fails; it is for a machine that does a lot
# beside this.
readonly patience=180
eventually() {
    local end=$((SECONDS + patience))
    until "$@"; do
        [ $SECONDS -lt $end ] || return 1
        sleep 0.25
    done
}

note() { printf '%8s  %s\n' "$(uptime_of_machine)" "$*"; }
wrong() {
    note "WRONG $*"
    failures=$((failures + 1))
}

# expect WHAT WANTED FOUND
expect() {
    if [ "$2" = "$3" ]; then note "      $1: $2"; else wrong "$1: $3, not $2"; fi
}

# expect_soon WHAT WANTED COMMAND...: what the command prints becomes what is wanted.
prints() { [ "$("${@:2}" 2>/dev/null)" = "$1" ]; }
expect_soon() {
    local what=$1 wanted=$2 start
    shift 2
    start=$(uptime_of_machine)
    if eventually prints "$wanted" "$@"; then
        note "      $what: $wanted, after $(uptime_of_machine | awk -v start="$start" '{ printf "%.1f", $1 - start }') s"
    else
        wrong "$what: $("$@" 2>&1), not $wanted, after $patience s"
    fi
}

# must WHAT COMMAND...: without which the case cannot go on.
must() {
    local what=$1
    shift
    "$@" && return
    wrong "$what"
    exit 1
}
