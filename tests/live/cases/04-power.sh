# Transmit power is followed, in milliwatts
must 'a collector and an agent' serve
set_power() { iw dev wlan0 set txpower fixed "$1"; }
set_power 1000
expect 'by iw' 'txpower 10.00 dBm' "$(iw dev wlan0 info | grep -o 'txpower.*')"
expect_soon 'tx-power of wlan0 in the store' 10 stored interface wlan0 tx-power
set_power 2000
expect_soon 'tx-power of wlan0 in the store' 100 stored interface wlan0 tx-power
