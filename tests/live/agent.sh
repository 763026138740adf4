# shellcheck shell=bash
# The collector, the store and the agent on the virtual access point, set up as docs/live.md tells: each as its own user, the
# store on tmpfs behind the default path.
# LIVE_BUILD: where they were built

readonly cfql=$LIVE_BUILD/tool/cfql radio=$LIVE_BUILD/tests/live/radio
readonly store=/run/cfql/store.db agent=127.0.0.1:161
dot11=.1.2.840.10036

# As packages do, but by hand: who is not root on the host can read no shadow file in here. What packages have made on the host
# is hidden: its directory of the store may not even be read. Writes stay in this machine's memory.
make_users() {
    sed -i '/^cfql/d' /etc/group /etc/passwd
    echo 'cfql:x:61184:Debian-snmp' >>/etc/group
    echo 'cfql-collector:x:61184:61184::/nonexistent:/usr/sbin/nologin' >>/etc/passwd
    install -d -m 2750 -o cfql-collector -g cfql /run/cfql
    install -d /var/lib/cfql /var/lib/snmp
    mount -t tmpfs tmpfs /var/lib/cfql
    ln -s $store /var/lib/cfql/store.db
}

# --- Collector -----------------------------------------------------------------------------------------------------------

readonly collector_pid=$lab/collector.pid collector_log=$lab/collector.log
# Sets `as_collector` to the words that make a command the collector's: its user, hostapd's group, and CAP_NET_ADMIN unless
# `powerless` is set.
choose_rights() {
    local naming=-all,+net_admin
    as_collector=(setpriv --reuid cfql-collector --regid cfql --groups netdev)
    if [ -n "${powerless-}" ]; then
        as_collector+=(--bounding-set -all)
    else
        as_collector+=(--bounding-set "$naming" --inh-caps "$naming" --ambient-caps "$naming")
    fi
}


# start_collector [OPTION...]: its first pass is over then. Every 2 seconds another, unless an option says otherwise.
start_collector() {
    local before
    before=$(stamp)
    [ $# -gt 0 ] || set -- --interval 2
    choose_rights
    "${as_collector[@]}" "$LIVE_BUILD/collector/cfql-collector" "$@" 2>>"$collector_log" &
    echo $! >"$collector_pid"
    eventually stamp_is_not "$before"
}
stop_collector() { end_process "$collector_pid"; }

stamp() { stat -c %y /run/cfql/store.db.collector 2>/dev/null; }
stamp_is_not() { [ "$(stamp)" != "$1" ]; }
# await_passes COUNT: so many passes end.
await_passes() {
    local pass
    for ((pass = 0; pass < $1; ++pass)); do eventually stamp_is_not "$(stamp)" || return; done
}
restart_collector() { stop_collector && start_collector "$@"; }

# --- Agent ---------------------------------------------------------------------------------------------------------------

# Content is never older than a second, so that a case need not leave a table alone before it asks again.
agent_conf() {
    cat <<TEXT
dlmod ieee802dot11 $LIVE_BUILD/src/ieee802dot11.so
${dot11_max_age-dot11MaxAge 1}
agentaddress udp:$agent
rocommunity public 127.0.0.1
TEXT
}

agent_answers() { [ -n "$(get .1.3.6.1.2.1.1.3.0)" ]; }
start_agent() {
    agent_conf >"$lab/snmpd.conf"
    LD_LIBRARY_PATH=$LIVE_BUILD/cfql SNMP_PERSISTENT_DIR=$lab/snmp MIBS='' snmpd -u Debian-snmp -g Debian-snmp \
        -I -smux,mteTrigger,mteTriggerConf -Lf "$lab/snmpd.log" -C -c "$lab/snmpd.conf" -p "$lab/snmpd.pid" &&
        eventually agent_answers
}
stop_agent() { end_process "$lab/snmpd.pid"; }

# get OID...: the values, one a line. Never-answered columns end the answer: leave them out.
readonly snmp=(-v 2c -c public -m '' -M '' -t 10 -r 2)
get() { snmpget "${snmp[@]}" -O vQe "$agent" "$@" 2>/dev/null; }
get_hex() { snmpget "${snmp[@]}" -O vqx "$agent" "$@" 2>/dev/null | tr -d '" ' | tr A-F a-f; }
walk() { snmpwalk "${snmp[@]}" -C c -O vQe "$agent" "$1" 2>/dev/null; }

# Columns of an interface's row, one a line: station COLUMN INTERFACE and so on.
value() { get "$dot11.$1.$(index "$2")"; }
station() { value "1.1.1.$1" "$2"; }
operation() { value "2.1.1.$1" "$2"; }
counter() { value "2.2.1.$1" "$2"; }
channel() { value 4.5.1.1 "$1"; }
# values INTERFACE COLUMN...: in a line, such as: values wlan0 1.1.1.9 4.5.1.1; hex_values prints texts as octets.
oids() {
    local row column
    row=$(index "$1")
    for column in "${@:2}"; do echo "$dot11.$column.$row"; done
}
values() {
    mapfile -t asked < <(oids "$@")
    get "${asked[@]}" | in_a_line
}
hex_values() {
    mapfile -t asked < <(oids "$@")
    get_hex "${asked[@]}" | in_a_line
}
rows() { walk $dot11.1.1.1.10 | grep -c '^[0-9]'; }

# --- Store ---------------------------------------------------------------------------------------------------------------

stored() { "$cfql" get "$@"; }

# --- Both ----------------------------------------------------------------------------------------------------------------

runs() { [ -f "$1" ] && kill -0 "$(cat "$1")" 2>/dev/null; }
serve() {
    runs $collector_pid || start_collector || return
    runs $lab/snmpd.pid || start_agent
}

# rows_follow_hostapd SIGNAL: what happens when that ends phy0's hostapd, and it is started again.
rows_follow_hostapd() {
    local signal=$1 name old before after
    must 'the client there' eventually joined
    name=$(served_name wlan0_1)
    old=$(index wlan0_1)
    settle
    before=$(counted)
    end_process $lab/wpa2.pid "$signal"
    expect_soon 'rows' 1 rows
    expect 'objects of wlan0 and wlan0_1' 0 "$("$cfql" list | cut -f 2 | grep -cE "^(wlan0|$name)\$")"
    must 'hostapd' start_wpa2
    expect_soon 'rows' 3 rows
    expect 'wlan0_1 has a new index' yes "$([ "$(index wlan0_1)" -ne "$old" ] && echo yes)"
    expect_soon 'dot11DesiredSSID at that index' '"lab-open"' station 9 wlan0_1
    expect_soon 'dot11CurrentChannel of wlan0' "$(channel_by_iw wlan0)" channel wlan0
    must 'the client back' eventually joined
    settle
    after=$(counted)
    ! fell "$after" "$before" || wrong "a counter of wlan0 fell, from $before to $after"
    note "      received, transmitted, failed of wlan0: $before before, $after after"
}
