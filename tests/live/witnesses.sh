# shellcheck shell=bash
# What others than the agent say: sysfs, iw, hostapd, and the kernel's own events.

octets() { od -A n -t x1 -v | tr -d ' \n'; }
index() { cat "/sys/class/net/$1/ifindex"; }
mac_by_sysfs() { tr -d :'\n' <"/sys/class/net/$1/address"; }

# by_hostapd BSS KEY: of its STATUS, as it says it.
by_hostapd() { hostapd_cli "$1" status | sed -n "s/^$2=//p"; }
ssid_by_hostapd() { hostapd_cli "$1" get_config | sed -n 's/^ssid=//p' | tr -d '\n'; }

# Nothing where there is no threshold.
rts_by_iw() { iw phy "$1" info | sed -n 's/.*RTS threshold: //p'; }
fragmentation_by_iw() { iw phy "$1" info | sed -n 's/.*Fragmentation threshold: //p'; }
# or_off VALUE COMMAND...: VALUE where the command says nothing.
or_off() {
    local found
    found=$("${@:2}")
    echo "${found:-$1}"
}
channel_by_iw() { iw dev "$1" info | sed -n 's/.*channel \([0-9]*\).*/\1/p'; }
country_by_iw() { iw reg get | sed -n 's/^country \(..\).*/\1/p' | head -n 1; }

# The name under which an interface is served: its own, or an alternative one when that has more than five characters.
served_name() {
    if [ ${#1} -le 5 ]; then echo "$1"; else ip link show dev "$1" | sed -n 's/^ *altname //p' | awk 'length <= 5'; fi
}

# --- Counters of stations ------------------------------------------------------------------------------------------------

readonly departures=$lab/departures
start_witness() {
    "$radio" watch >$departures 2>>$lab/witness.log &
    echo $! >$lab/witness.pid
    eventually grep -q ready $departures
}
stop_witness() { end_process $lab/witness.pid; }

# tallied BSS: received, transmitted and failed packets of all its stations since start_witness, with those that left.
# A packet that failed counts as transmitted there.
tallied() {
    {
        awk -v bss="$(index "$1")" '$1 == "departed" && $2 == bss { print $3, $4, $5 }' $departures
        iw dev "$1" station dump | awk '/rx packets/ { r = $3 } /tx packets/ { t = $3 } /tx failed/ { print r, t, $3 }'
    } | awk '{ r += $1; t += $2 - $3; f += $3 } END { print r + 0, t + 0, f + 0 }'
}

# counted [BSS]: what the store holds of the same.
counted() {
    local name
    name=$(served_name "${1-wlan0}")
    "$cfql" list interface "$name" | awk -F '\t' '
        $3 == "received-fragment-count" { r = $4 } $3 == "transmitted-frame-count" { t = $4 } $3 == "failed-count" { f = $4 }
        END { print r + 0, t + 0, f + 0 }'
}
answered() { values "$1" 2.2.1.10 2.2.1.13 2.2.1.3; }

# What is subtracted on either side: the witness and the collector began at different times.
begin_counting() {
    local bss=${1-wlan0}
    settle "$bss"
    tallied_first=$(tallied "$bss")
    counted_first=$(counted "$bss")
    counted_last=$counted_first
}

# difference "A B C" "D E F": A-D B-E C-F, modulo 2^31 as the store's are.
difference() { echo "$1 $2" | awk '{ for (i = 1; i <= 3; ++i) printf "%d%s", ($i - $(i + 3) + 2147483648) % 2147483648, i < 3 ? " " : "\n" }'; }
witnessed_all() { difference "$(tallied "$1")" "$tallied_first"; }
counted_all() { difference "$(counted "$1")" "$counted_first"; }
answered_all() { difference "$(answered "$1")" "$counted_first"; }

field() { case $1 in received) echo 1 ;; transmitted) echo 2 ;; failed) echo 3 ;; esac }
witnessed() { witnessed_all "${2-wlan0}" | cut -d ' ' -f "$(field "$1")"; }
counted_since() { counted_all "${2-wlan0}" | cut -d ' ' -f "$(field "$1")"; }

# Until a pass has seen the last frame: nothing moves any more.
settle() {
    local before
    must 'a pass' await_passes 1
    for _ in 1 2 3 4 5 6 7 8 9; do
        before="$(tallied "${1-wlan0}") $(counted "${1-wlan0}")"
        must 'a pass' await_passes 1
        [ "$before" != "$(tallied "${1-wlan0}") $(counted "${1-wlan0}")" ] || return 0
    done
    wrong 'frames do not end'
}

# Whether a counter is less than it was the last time. At the wrap it is, by far.
fell() { echo "$1 $2" | awk '{ for (i = 1; i <= 3; ++i) if ($i < $(i + 3) && $(i + 3) - $i < 1000000) exit 0; exit 1 }'; }

# counters_agree WHEN [BSS]: received, transmitted, failed, since begin_counting.
counters_agree() {
    local bss=${2-wlan0} now
    settle "$bss"
    now=$(counted "$bss")
    expect "$1: received, transmitted, failed in the store" "$(witnessed_all "$bss")" "$(counted_all "$bss")"
    expect_soon "$1: by SNMP" "$(counted_all "$bss")" answered_all "$bss"
    ! fell "$now" "$counted_last" || wrong "$1: a counter fell, from $counted_last to $now"
    counted_last=$now
}
