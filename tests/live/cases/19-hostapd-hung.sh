# hostapd hangs: rows and what it told stay, what the kernel says is followed, passes go on
must 'a collector and an agent' serve
kill -STOP "$(cat $lab/wpa2.pid)"
iw phy phy0 set rts 900
expect_soon 'dot11RTSThreshold' 900 operation 2 wlan0
expect 'rows' 3 "$(rows)"
expect 'dot11DTIMPeriod, dot11DesiredSSID' '3 "lab-open"' "$(values wlan0_1 1.1.1.13 1.1.1.9)"
kill -CONT "$(cat $lab/wpa2.pid)"
iw phy phy0 set rts 2000
expect_soon 'dot11RTSThreshold, as before' 2000 operation 2 wlan0
must 'the client there' eventually joined
