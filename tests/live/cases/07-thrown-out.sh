# Who was thrown out last, and why; a broadcast changes nothing
must 'a collector and an agent' serve
must 'the client there' eventually joined
must 'a collector with an hour between passes' restart_collector --interval 3600
mac=${client_mac//:/}
last() { hex_values wlan0 1.1.1.$1 1.1.1.$(($1 + 1)); }
throw_out() {
    must "$*" told wlan0 "$1" "$2" reason="$3"
}
throw_out deauthenticate $client_mac 5
expect_soon 'in the store' 5 stored interface wlan0 dot11-deauthenticate-reason
expect_soon 'dot11DeauthenticateReason, dot11DeauthenticateStation' "5 $mac" last 17
must 'the client back' eventually joined
throw_out disassociate $client_mac 8
expect_soon 'dot11DisassociateReason, dot11DisassociateStation' "8 $mac" last 15
must 'the client back' eventually joined
throw_out deauthenticate ff:ff:ff:ff:ff:ff 7
must 'the client back' eventually joined
# What was sent later is there, so the broadcast before it has been seen too.
throw_out disassociate $client_mac 4
expect_soon 'dot11DisassociateReason, dot11DisassociateStation' "4 $mac" last 15
expect 'dot11DeauthenticateReason after a broadcast' "5 $mac" "$(last 17)"
expect 'wlan1' '0 000000000000' "$(hex_values wlan1 1.1.1.17 1.1.1.18)"
must 'the client back' eventually joined
restart_collector
