# A store that another program holds is written a pass later
must 'a collector and an agent' serve
mkfifo $lab/hold
"$LIVE_BUILD/tests/live/hold" $store <$lab/hold >$lab/held &
holder=$!
exec 7>$lab/hold
must 'a held store' eventually grep -q held $lab/held
iw phy phy0 set rts 700
must 'passes meanwhile' await_passes 3
expect 'RTS threshold in the store' 2000 "$(stored radio wlan0 rts-threshold)"
expect 'the collector lives' yes "$(kill -0 "$(cat "$collector_pid")" && echo yes)"
exec 7>&-
expect_soon 'RTS threshold in the store once it is released' 700 stored radio wlan0 rts-threshold
expect_soon 'dot11RTSThreshold' 700 operation 2 wlan0
iw phy phy0 set rts 2000
wait $holder
