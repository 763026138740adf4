# What --list shows and --remove-aliases removes
must 'a collector and an agent' serve
name=$(served_name wlan0_1)
collector() { "${as_collector[@]}" "$LIVE_BUILD/collector/cfql-collector" "$@" 2>>$collector_log; }
choose_rights
collector --list >$lab/list
expect 'exit status' 0 $?
note "$(cat $lab/list)"
listed() { grep -c "^  $1: $2" $lab/list; }
expect 'wlan0' 1 "$(listed wlan0 'served as wlan0, ssid "lab-wpa2", channel 6, . station')"
expect 'wlan0_1' 1 "$(listed wlan0_1 "served as $name, ssid \"lab-open\", channel 6, 0 stations")"
expect 'wlan1' 1 "$(listed wlan1 'served as wlan1, ssid "lab-wep", channel 11, 0 stations')"
stations=$(iw dev | grep -c 'type managed')
expect 'interfaces that are stations' "$stations" "$(listed 'wlan[0-9]' 'not served: it is a station')"
expect 'some are' yes "$([ "$stations" -gt 0 ] && echo yes)"
expect 'radios of access points' 2 "$(grep -cE '^radio phy[01]$' $lab/list)"

must 'an end of the collector' stop_collector
expect 'removed' "wlan0_1: removed $name" "$(collector --remove-aliases)"
expect 'alternative names of wlan0_1' 0 "$(ip link show dev wlan0_1 | grep -c altname)"
expect 'removed the second time' '' "$(collector --remove-aliases)"
expect_soon 'rows' 2 rows
must 'a collector that sets no names' start_collector --interval 2 --no-aliases
must 'passes' await_passes 3
expect 'alternative names of wlan0_1' 0 "$(ip link show dev wlan0_1 | grep -c altname)"
expect 'rows' 2 "$(rows)"
must 'a collector that sets names' restart_collector
expect_soon 'rows' 3 rows
expect 'the name of before' "$name" "$(served_name wlan0_1)"
