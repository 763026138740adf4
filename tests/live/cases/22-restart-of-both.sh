# A collector restarted while the access point is stopped, or hostapd hangs, goes on from what was known
must 'a collector and an agent' serve
must 'the client there' eventually joined
must 'frames' exchange 5
settle
before=$(counted)
must 'an end of hostapd' stop_hostapd wpa2
expect_soon 'rows' 1 rows
must 'another collector' restart_collector
expect 'rows' 1 "$(rows)"
must 'hostapd' start_wpa2
expect_soon 'rows' 3 rows
after=$(counted)
! fell "$after" "$before" || wrong "a counter of wlan0 fell, from $before to $after"
note "      received, transmitted, failed of wlan0: $before before, $after after"
expect 'nothing is kept apart any more' '' "$("$cfql" list collector 2>/dev/null)"
must 'the client back' eventually joined

kill -STOP "$(cat $lab/wpa2.pid)"
must 'another collector' restart_collector
must 'passes' await_passes 2
expect 'dot11DTIMPeriod, dot11BeaconPeriod, dot11PrivacyInvoked, dot11DesiredSSID of wlan0' '2 100 1 "lab-wpa2"' \
    "$(values wlan0 1.1.1.13 1.1.1.12 1.5.1.1 1.1.1.9)"
expect 'dot11DTIMPeriod of wlan0_1' 3 "$(values wlan0_1 1.1.1.13)"
kill -CONT "$(cat $lab/wpa2.pid)"
must 'the client there' eventually joined
