# hostapd's sockets vanish: what it told stays, what the kernel says is followed
must 'a collector and an agent' serve
rm /run/hostapd/*
iw phy phy0 set rts 800
expect_soon 'dot11RTSThreshold' 800 operation 2 wlan0
expect 'dot11DTIMPeriod, dot11BeaconPeriod' '2 100' "$(values wlan0 1.1.1.13 1.1.1.12)"
expect 'dot11DesiredSSID' '"lab-open"' "$(station 9 wlan0_1)"
for one in wpa2 wep; do
    stop_hostapd $one
    must "hostapd ($one)" start_"$one"
done
expect_soon 'dot11RTSThreshold, as before' 2000 operation 2 wlan0
must 'the client back' eventually joined
