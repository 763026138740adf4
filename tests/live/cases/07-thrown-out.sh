# Who was thrown out last, and why; a broadcast changes nothing
must 'a collector and an agent' serve
must 'the client there' eventually joined
must 'a collector with an hour between passes' restart_collector --interval 3600
mac=${client_mac//:/}
last() { hex_values wlan0 1.1.1.$1 1.1.1.$(($1 + 1)); }
# throw_out HOW REASON COLUMN: until that was the last frame of its kind. A client that goes on sending, since it has not noticed
# yet, is thrown out once more by the access point itself, with reason 6 or 7.
throw_out() {
    told wlan0 "$1" $client_mac reason="$2"
    prints "$2 $mac" last "$3"
}
throw_out_for_good() {
    if eventually throw_out "$@"; then note "      dot11$1: $2 $mac"; else wrong "dot11$1: $(last "$3"), not $2 $mac"; fi
    must 'the client back' eventually joined
}
must 'told' told wlan0 deauthenticate $client_mac reason=5
expect_soon 'in the store' 5 stored interface wlan0 dot11-deauthenticate-reason
throw_out_for_good deauthenticate 5 17
throw_out_for_good disassociate 8 15
must 'a broadcast' told wlan0 deauthenticate ff:ff:ff:ff:ff:ff reason=9
must 'the client back' eventually joined
# What was sent later is there, so the broadcast before it has been seen too.
throw_out_for_good disassociate 4 15
expect 'the broadcast' '' "$(last 17 | grep -E '^9|ffffffffffff')"
expect 'wlan1' '0 000000000000' "$(hex_values wlan1 1.1.1.17 1.1.1.18)"
restart_collector
