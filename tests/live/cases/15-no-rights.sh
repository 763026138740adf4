# Without any capability: the rows are right, but for the long name, and the log says so once
must 'a collector and an agent' serve
must 'no alternative name' ip link property del dev wlan0_1 altname "$(served_name wlan0_1)"
stop_collector
: >$collector_log
powerless=yes must 'a collector without rights' start_collector
expect 'its capabilities' 0000000000000000 "$(awk '$1 == "CapEff:" { print $2 }' "/proc/$(cat $collector_pid)/status")"
expect_soon 'rows' 2 rows
expect 'dot11DesiredSSID, dot11PrivacyInvoked, dot11DTIMPeriod of wlan0' '"lab-wpa2" 1 2' \
    "$(values wlan0 1.1.1.9 1.5.1.1 1.1.1.13)"
expect 'dot11DesiredSSID, dot11DTIMPeriod, dot11CurrentChannel of wlan1' "\"lab-wep\" 5 $(channel_by_iw wlan1)" \
    "$(values wlan1 1.1.1.9 1.1.1.13 4.5.1.1)"
# hostapd does not tell WEP from open, and the kernel tells nobody without the right.
expect 'what is not known of wlan1 is left out' '' "$(stored interface wlan1 security 2>/dev/null)"
expect 'log lines about that' 1 "$(grep -c 'looks like one with WEP' $collector_log)"
must 'the client there' eventually joined
must 'frames' exchange 5
must 'passes' await_passes 3
expect 'log lines about wlan0_1 being left out' 1 "$(grep -c 'wlan0_1 is not served' $collector_log)"
restart_collector
expect_soon 'rows with the right to name interfaces' 3 rows
