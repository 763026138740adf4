# Thresholds and retry limits are followed, in all rows of the radio and only there
must 'a collector and an agent' serve
limits() { values "$1" 2.1.1.2 2.1.1.5 2.1.1.3 2.1.1.4; }
set_limits() {
    iw phy phy0 set rts "$1"
    iw phy phy0 set frag "$2"
    iw phy phy0 set retry short "$3"
    iw phy phy0 set retry long "$4"
}
set_limits 500 1000 5 3
expect 'by iw' '500 1000' "$(rts_by_iw phy0) $(fragmentation_by_iw phy0)"
expect_soon 'RTS threshold in the store' 500 stored radio wlan0 rts-threshold
expect_soon 'wlan0: RTS, fragmentation, retry limits' '500 1000 5 3' limits wlan0
expect_soon 'wlan0_1' '500 1000 5 3' limits wlan0_1
expect 'wlan1' '2347 2346 7 4' "$(limits wlan1)"
set_limits off off 7 4
expect 'by iw: none' ' ' "$(rts_by_iw phy0) $(fragmentation_by_iw phy0)"
expect_soon 'wlan0, thresholds off' '2347 2346 7 4' limits wlan0
set_limits 2000 1600 7 4
expect_soon 'wlan0, as before' '2000 1600 7 4' limits wlan0
