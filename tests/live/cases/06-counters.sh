# Counters are those of the stations, also of those that left, and never fall
must 'a collector and an agent' serve
mount -t debugfs debugfs /sys/kernel/debug
must 'a witness of departures' start_witness
must 'the client there' eventually joined
restart_collector
begin_counting

# reach GROUP: radios hear only those of their own group.
reach() { echo "$1" >/sys/kernel/debug/ieee80211/phy0/hwsim/group; }
lose() {
    reach 2
    ping -c 7 -i 0.05 -W 1 -q 10.9.0.2 >/dev/null
    reach 1
}
leave_thrice() {
    local time
    for time in 1 2 3; do leave && join && exchange 2 || return; done
}
for step in 'exchange 10' throw_out 'exchange 10' lose reassociate leave_thrice 'exchange 5' leave join; do
    must "$step" $step
    counters_agree "after $step"
done
expect 'frames were lost' yes "$([ "$(witnessed failed)" -ge 7 ] && echo yes)"
stop_witness
