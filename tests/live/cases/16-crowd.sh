# 350 stations leave while the collector stands still: all are counted; with a small buffer none twice
must 'a collector and an agent' serve
must 'a witness of departures' start_witness
bss=wlan0_1
readonly crowd=350

# Stations without radios: each frame to them fails.
address_of() { echo "10.77.$(($1 / 256)).$(($1 % 256))"; }
name_all() {
    local number
    ip address replace 10.77.100.1/16 dev $bss
    for ((number = 0; number < crowd; ++number)); do
        printf 'neighbour replace %s lladdr 02:aa:00:00:%02x:%02x dev %s\n' \
            "$(address_of $number)" $((number / 256)) $((number % 256)) $bss
    done | ip -batch -
}
send_all() {
    local number
    for ((number = 0; number < crowd; ++number)); do echo >"/dev/udp/$(address_of $number)/9"; done
}
failures_by_iw() { iw dev $bss station dump | awk '/tx failed/ { sum += $3 } END { print sum + 0 }'; }
all_failed() { [ "$(failures_by_iw)" -ge "$1" ]; }

crowd_leaves() {
    must 'stations' "$radio" add $bss $crowd
    begin_counting $bss
    send_all
    must 'frames to all of them' eventually all_failed $crowd
    counters_agree "with $crowd stations" $bss
    kill -STOP "$(cat $collector_pid)"
    send_all
    must 'frames to all of them' eventually all_failed $((2 * crowd))
    must 'their departure' "$radio" drop $bss
    kill -CONT "$(cat $collector_pid)"
}

name_all
crowd_leaves
counters_agree "after $crowd have left" $bss
expect 'failed frames to them' $((2 * crowd)) "$(witnessed failed $bss)"
stop_collector
powerless=yes must 'a collector without rights' start_collector
crowd_leaves
must 'passes' await_passes 2
between=$(counted_since failed $bss)
note "      of $((2 * crowd)) failed frames $between were counted with a small buffer"
expect 'counted at least those of the last pass, and none twice' yes \
    "$([ "$between" -ge $crowd ] && [ "$between" -le $((2 * crowd)) ] && echo yes)"
restart_collector
stop_witness
