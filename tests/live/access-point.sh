# shellcheck shell=bash
# The virtual access point. Three simulated radios:
#   phy0  wlan0: WPA2, channel 6, beacons every 100, DTIM every 2; and a second BSS, wlan0_1: open, DTIM every 3
#   phy1  wlan1: WEP, channel 11, beacons every 200, DTIM every 5
#   phy2  wlan2, a client, in the network namespace "client2"; wlan0 is 10.9.0.1, the client 10.9.0.2
#   phy3 and up: more clients, alike, where a case starts them

# shellcheck disable=SC2034 # cases use what is set here
readonly lab=/run/lab client_mac=02:00:00:00:02:00 radios=6
hostapd_cli() { command hostapd_cli -p /run/hostapd -i "$@"; }
# Whether hostapd does it.
told() { [ "$(hostapd_cli "$@")" = OK ]; }
wpa_cli() { command wpa_cli -p /run/wpa_supplicant -i "wlan${client-2}" "$@"; }

# --- Configuration -----------------------------------------------------------------------------------------------------

hostapd_common() {
    cat <<TEXT
interface=$1
driver=nl80211
ctrl_interface=/run/hostapd
ctrl_interface_group=netdev
country_code=DE
hw_mode=g
TEXT
}

# wpa2_conf [LINE...]: phy0's, with these lines in the place of WPA2 with a password.
wpa2_conf() {
    hostapd_common wlan0
    cat <<'TEXT'
ssid=lab-wpa2
ieee80211d=1
channel=6
beacon_int=100
dtim_period=2
rts_threshold=2000
fragm_threshold=1600
wpa=2
TEXT
    [ $# -gt 0 ] || set -- wpa_key_mgmt=WPA-PSK rsn_pairwise=CCMP wpa_passphrase=labsecret1
    printf '%s\n' "$@"
    cat <<'TEXT'
bss=wlan0_1
bssid=02:00:00:00:00:01
ctrl_interface=/run/hostapd
ctrl_interface_group=netdev
ssid=lab-open
dtim_period=3
auth_algs=1
TEXT
}

wep_conf() {
    hostapd_common wlan1
    cat <<'TEXT'
ssid=lab-wep
channel=11
beacon_int=200
dtim_period=5
auth_algs=3
wep_default_key=0
wep_key0="abcde"
TEXT
}

# client_conf LINE...: what the client uses to join lab-wpa2.
client_conf() {
    echo 'ctrl_interface=/run/wpa_supplicant'
    echo 'country=DE'
    printf 'network={\n ssid="lab-wpa2"\n scan_freq=2437\n'
    printf ' %s\n' "$@"
    echo '}'
}

# --- Start and end -------------------------------------------------------------------------------------------------------

insert_radios() {
    [ -x /sbin/modprobe ] || ln -s "$(command -v busybox)" /sbin/modprobe # the kernel calls it for ccm(aes) and the like
    local module
    for module in ccm ctr cmac gcm; do modprobe $module || return; done
    modprobe mac80211_hwsim radios=$radios
    iw reg set DE
}

start_hostapd() { hostapd -B -P "$lab/$1.pid" -f "$lab/$1.log" "$lab/$1.conf" >/dev/null; }

# end_process PIDFILE [SIGNAL]: returns when the process is gone.
end_process() {
    local process
    process=$(cat "$1") || return 0
    kill "-${2-TERM}" "$process" 2>/dev/null
    eventually not kill -0 "$process"
    rm -f "$1"
}

stop_hostapd() { end_process "$lab/$1.pid"; }
start_wep() { start_hostapd wep; }
start_wpa2() {
    start_hostapd wpa2 || return
    ip address replace 10.9.0.1/24 dev wlan0
    ip address replace 10.9.1.1/24 dev wlan0_1
}

# start_client NUMBER [LINE...]: on the radio of that number, in a namespace of its own; with these lines in the place of the
# right password.
start_client() {
    local name=client$1 secret=("${@:2}")
    [ $# -gt 1 ] || secret=('key_mgmt=WPA-PSK' 'psk="labsecret1"')
    client_conf "${secret[@]}" >"$lab/$name.conf"
    ip netns add "$name" && iw phy "phy$1" set netns name "$name" || return
    ip -n "$name" link set lo up
    ip netns exec "$name" wpa_supplicant -B -P "$lab/$name.pid" -i "wlan$1" -D nl80211 \
        -c "$lab/$name.conf" -f "$lab/$name.log" >/dev/null && ip -n "$name" address add "10.9.0.$1/24" dev "wlan$1"
}

# --- What the client does ------------------------------------------------------------------------------------------------

# All of these are about client 2, or the one that the variable `client` tells.
mac_of_client() { printf '02:00:00:00:%02x:00' "${client-2}"; }
# Whether the client is on wlan0, and allowed to send.
joined() { iw dev wlan0 station get "$(mac_of_client)" 2>/dev/null | grep -q 'authorized:.*yes'; }
left() { not iw dev wlan0 station get "$(mac_of_client)"; }
join() {
    wpa_cli reconnect >/dev/null
    eventually joined
}
leave() {
    wpa_cli disconnect >/dev/null
    eventually left
}
reassociate() {
    wpa_cli reassociate >/dev/null
    eventually joined
}
# The access point's doing; the client comes back by itself.
throw_out() {
    told wlan0 deauthenticate "$(mac_of_client)" && eventually joined
}

transmitted_by_iw() { iw dev wlan0 station get "$(mac_of_client)" | awk '/tx packets/ { print $3 }'; }

# exchange COUNT: so many packets to the client and their answers.
exchange() { ping -c "$1" -i 0.05 -W 10 -q "10.9.0.${client-2}" | grep -q ' 0% packet loss'; }

start_access_point() {
    mkdir -p "$lab"
    wpa2_conf >"$lab/wpa2.conf"
    wep_conf >"$lab/wep.conf"
    ip link set lo up
    insert_radios && start_wpa2 && start_wep
}

start_first_client() { start_client 2 && eventually joined && exchange 5; }
