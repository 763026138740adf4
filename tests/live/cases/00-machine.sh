# Without a collector, the agent's interfaces, the kernel and hostapd agree
must 'an agent' start_agent
for name in wlan0 wlan0_1 wlan1; do
    row=$(index $name)
    expect "ifDescr of $name" "\"$name\"" "$(get ".1.3.6.1.2.1.2.2.1.2.$row")"
    expect "ifPhysAddress of $name" "$(mac_by_sysfs $name)" "$(get_hex ".1.3.6.1.2.1.2.2.1.6.$row")"
done
expect 'rows without a store' 0 "$(rows)"
expect 'RTS threshold' 2000 "$(rts_by_iw phy0)"
expect 'DTIM period' 5 "$(by_hostapd wlan1 dtim_period)"
stop_agent
