# An interface with a long name is served under an alternative one, at its own index
must 'a collector and an agent' serve
name=$(served_name wlan0_1)
expect 'an alternative name of at most five characters' yes "$([ -n "$name" ] && [ ${#name} -le 5 ] && echo yes)"
expect 'the interface behind it' wlan0_1 "$(ip -o link show dev "$name" | sed 's/^[0-9]*: \([^:@]*\).*/\1/')"
expect 'interface, bss and radio in the store' "service-set $name $name" \
    "$(stored interface $name type) $(stored interface $name bss) $(stored bss $name radio)"
expect 'nothing under its own name' '' "$(stored interface wlan0_1 type 2>/dev/null)"
expect 'ifDescr at its index' '"wlan0_1"' "$(get ".1.3.6.1.2.1.2.2.1.2.$(index wlan0_1)")"
expect 'dot11DesiredSSID at its index' '"lab-open"' "$(station 9 wlan0_1)"
