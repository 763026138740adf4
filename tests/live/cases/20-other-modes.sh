# Only access points are rows: no ad hoc, mesh, station or monitor interface
must 'a collector and an agent' serve
add() { iw phy phy1 interface add "$1" type "$2" 2>&1; }
add ibss0 ibss && add mon0 monitor && add mesh0 mesh && add sta0 managed
ip link set mon0 up
must 'passes' await_passes 2
expect 'rows' 3 "$(rows)"
expect 'interfaces in the store' 3 "$("$cfql" list interface | cut -f 2 | sort -u | wc -l)"
for name in ibss0 mon0 mesh0 sta0; do iw dev $name del; done
