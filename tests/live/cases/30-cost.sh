# A pass over 8 BSSs with 50 stations each takes at most 15 million instructions, 5 million of them the collector's own
# Run where a nanosecond is an instruction; see ./check-live.
stop_hostapd wpa2
{
    hostapd_common wlan0
    printf 'channel=6\nssid=lab-0\n'
    for number in 1 2 3 4 5 6 7; do printf 'bss=wlan0_%d\nctrl_interface=/run/hostapd\nssid=lab-%d\n' $number $number; done
} >$lab/wpa2.conf
must 'hostapd with 8 BSSs' start_wpa2
for name in wlan0 wlan0_{1..7}; do must "stations of $name" "$radio" add $name 50; done
# No pass by the clock is among those that are counted; they would also all meet the timer that samples at the same point.
must 'a collector' start_collector --interval 3600

# Nanoseconds, so instructions; and of those, by samples, the collector's own in hundredths of a second.
spent() { cut -d ' ' -f 1 "/proc/$(cat $collector_pid)/schedstat"; }
spent_in_user() { cut -d ' ' -f 14 "/proc/$(cat $collector_pid)/stat"; }
ip neighbour replace 10.9.0.77 lladdr 02:aa:00:00:00:01 dev wlan0
# A frame that is lost, so that counters change, and an event.
pass_with_a_change() {
    local before
    before=$(stamp)
    echo >/dev/udp/10.9.0.77/9
    ip link set dev wlan0_1 alias "pass $1"
    eventually stamp_is_not "$before"
}
readonly measured=100
for ((pass = 0; pass < 3; ++pass)); do must 'a first pass' pass_with_a_change first-$pass; done
before=$(spent)
before_in_user=$(spent_in_user)
stations=$(iw dev wlan0_7 station dump | grep -c '^Station')
for ((pass = 0; pass < measured; ++pass)); do must 'a pass' pass_with_a_change $pass; done
total=$((($(spent) - before) / measured))
user=$((($(spent_in_user) - before_in_user) * 10000000 / measured))
expect 'stations of the last BSS' 50 "$stations"
note "      instructions of a pass: $total, of which the collector's own: $user"
expect 'at most 15 million' yes "$([ $total -le 15000000 ] && echo yes)"
expect 'at most 5 million of its own' yes "$([ $user -le 5000000 ] && echo yes)"
expect 'frames were counted' yes "$([ "$("$cfql" get interface wlan0 failed-count)" -ge $measured ] && echo yes)"
