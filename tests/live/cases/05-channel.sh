# A channel switch is told at once: no pass by the clock would be in time
must 'a collector and an agent' serve
must 'a collector with an hour between passes' restart_collector --interval 3600
on_channel() { [ "$(channel_by_iw "$1")" = "$2" ]; }
switch() {
    must 'a channel switch' told wlan0 chan_switch 3 "$1"
    must "the kernel on channel $2" eventually on_channel wlan0 "$2"
    expect_soon 'channel in the store' "$2" stored radio wlan0 channel
    expect_soon 'dot11CurrentChannel of wlan0' "$2" channel wlan0
    expect_soon 'dot11CurrentChannel of wlan0_1' "$2" channel wlan0_1
    expect 'dot11CurrentChannel of wlan1' "$(channel_by_iw wlan1)" "$(channel wlan1)"
}
switch 2452 9
switch 2437 6
must 'the client back' eventually joined
restart_collector
