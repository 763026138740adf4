# A network that is renamed at run time, to octets that a terminal would not like
must 'a collector and an agent' serve
sed -i 's/^ssid=lab-open$/ssid2=P"a\\\\b\\xc3\\xa4 \\x01"/' $lab/wpa2.conf
kill -HUP "$(cat $lab/wpa2.pid)"
name() { get_hex $dot11.1.1.1.9."$(index wlan0_1)"; }
expect_soon 'dot11DesiredSSID' 615c62c3a42001 name
note "iw, whose copy is that of the start: $(iw dev wlan0_1 info | grep ssid)"
wpa2_conf >$lab/wpa2.conf
kill -HUP "$(cat $lab/wpa2.pid)"
expect_soon 'dot11DesiredSSID, as before' "$(printf lab-open | octets)" name
must 'the client back' eventually joined
