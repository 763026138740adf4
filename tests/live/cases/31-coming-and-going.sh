# Clients come and go for a while; at its end the sums are those of the witness, and no counter ever fell
must 'a collector and an agent' serve
must 'a witness of departures' start_witness
readonly clients=(2 3 4 5)
for client in 3 4 5; do
    must "client $client" start_client $client
    must "client $client on wlan0" eventually joined
done
begin_counting

restart_hostapd() {
    stop_hostapd wpa2 && start_wpa2 || return
    for client in "${clients[@]}"; do
        wpa_cli reconnect >/dev/null # one that had left comes back too
        eventually joined || return
    done
}
# Each of these leaves the client on wlan0.
act() {
    case $((RANDOM % 6)) in
        0) exchange $((RANDOM % 20 + 1)) ;;
        1) throw_out ;;
        2) reassociate ;;
        *) leave && join && exchange $((RANDOM % 5 + 1)) ;;
    esac
}
memory() { awk '$1 == "VmRSS:" { print $2 }' "/proc/$(cat $collector_pid)/status"; }

RANDOM=1
rounds=0
first_memory=$(memory)
before=$(answered wlan0)
end=$((SECONDS + LIVE_DURATION))
while [ $SECONDS -lt $end ]; do
    client=${clients[RANDOM % ${#clients[@]}]}
    act || note "client $client did not come back at once"
    rounds=$((rounds + 1))
    [ $((rounds % 100)) -ne 0 ] || must 'hostapd and all clients' restart_hostapd
    now=$(answered wlan0)
    ! fell "$now" "$before" || wrong "round $rounds: a counter fell, from $before to $now"
    before=$now
    [ $((rounds % 20)) -ne 0 ] || note "      $rounds rounds, counters $now"
done
for client in "${clients[@]}"; do must "an end of client $client" end_process $lab/client$client.pid; done
counters_agree "after $rounds rounds and $(grep -c departed $departures) departures"
note "      resident memory of the collector: $first_memory kB, then $(memory) kB"
stop_witness
