# Refused authentications: by address, by a wrong password of WPA2 and of SAE
must 'a collector and an agent' serve
must 'the client there' eventually joined
mac=${client_mac//:/}
last() { hex_values wlan0 1.1.1.$1 1.1.1.$(($1 + 1)); }
retry() {
    wpa_cli enable_network 0 >/dev/null # one that was refused is left alone for a while
    wpa_cli reassociate >/dev/null
}

must 'a list of those denied' told wlan0 deny_acl ADD_MAC $client_mac
retry
expect_soon 'dot11AuthenticateFailStatus, dot11AuthenticateFailStation' "1 $mac" last 19
must 'nobody denied' told wlan0 deny_acl CLEAR
retry
must 'the client back' eventually joined

wpa_cli set_network 0 psk '"wrong password"' >/dev/null
retry
expect_soon 'dot11DeauthenticateReason after a wrong password (15: no 4-way handshake)' "15 $mac" last 17
wpa_cli set_network 0 psk '"labsecret1"' >/dev/null
retry
must 'the client back' eventually joined

stop_hostapd wpa2
wpa2_conf wpa_key_mgmt=SAE rsn_pairwise=CCMP ieee80211w=2 wpa_passphrase=labsecret1 >$lab/wpa2.conf
must 'hostapd with SAE' start_wpa2
must 'a client with another password' start_client 3 key_mgmt=SAE ieee80211w=2 'sae_password="wrong password"'
expect_soon 'dot11AuthenticateFailStatus after a wrong password of SAE' '1 020000000300' last 19
end_process $lab/client3.pid

stop_hostapd wpa2
wpa2_conf >$lab/wpa2.conf
must 'hostapd as before' start_wpa2
retry
must 'the client back' eventually joined
