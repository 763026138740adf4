# A restarted collector goes on from what it had counted, and finds its names again
must 'a collector and an agent' serve
must 'a witness of departures' start_witness
must 'the client there' eventually joined
settle
before=$(counted)
was=$(transmitted_by_iw)
must 'an end of the collector' stop_collector
must 'frames that nobody counts' exchange 20
expect 'the kernel counted them' yes "$([ $(($(transmitted_by_iw) - was)) -ge 20 ] && echo yes)"
expect 'rows without a collector' 3 "$(rows)"
at_start=$(tallied wlan0)
must 'a collector' start_collector
settle
# The client may say something by itself meanwhile.
gained=$(difference "$(counted)" "$before")
new=$(difference "$(tallied wlan0)" "$at_start")
expect "received, transmitted, failed: gained $gained, of $new since the start" yes \
    "$(echo "$gained $new" | awk '{ for (i = 1; i <= 3; ++i) if ($i > $(i + 3)) exit; print "yes" }')"
begin_counting
must 'frames' exchange 5
counters_agree 'after the restart'
expect 'alternative names of wlan0_1' 1 "$(ip link show dev wlan0_1 | grep -c altname)"
stop_witness
