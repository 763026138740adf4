# A radio is unplugged: its row goes, and all of its objects
must 'a collector and an agent' serve
must 'no radio' "$radio" unplug phy1
expect_soon 'rows' 2 rows
expect 'objects of wlan1' 0 "$("$cfql" list | cut -f 2 | grep -c '^wlan1$')"
expect 'the collector lives' yes "$(kill -0 "$(cat "$collector_pid")" && echo yes)"
