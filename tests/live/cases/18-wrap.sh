# A counter goes on from 0 after 2147483647
must 'a collector and an agent' serve
must 'a witness of departures' start_witness
must 'the client there' eventually joined
must 'an end of the collector' stop_collector
must 'a counter near its end' "$cfql" set interface wlan0 transmitted-frame-count 2147483640
must 'a collector' start_collector
settle
begin_counting
expect 'dot11TransmittedFrameCount is large' yes "$([ "$(counter 13 wlan0)" -ge 2147483640 ] && echo yes)"
must 'frames' exchange 20
counters_agree 'over the wrap'
expect 'dot11TransmittedFrameCount is small' yes "$([ "$(counter 13 wlan0)" -lt 1000 ] && echo yes)"
stop_witness
