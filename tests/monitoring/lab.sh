# A stock snmpd with the module, snmp_exporter and Prometheus on loopback, in a network namespace of the caller's own. For scripts
# that set `build` (where module and tool were built) and call `lab_open`; what they start ends with them.
# shellcheck shell=bash
# shellcheck disable=SC2154 # build is the caller's
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
readonly shipped=$top/packaging/prometheus
readonly exporter_at=127.0.0.1:9116 prometheus_at=127.0.0.1:9090
lab='' pids=()

# enter_namespace "$0" "$@": runs the script again, in a namespace of its own.
enter_namespace() { [ -n "${LAB_NAMESPACE-}" ] || LAB_NAMESPACE=yes exec "$top/tests/alone" "$@"; }

lab_open() {
    lab=$(mktemp -d)
    trap lab_close EXIT
    trap 'exit 143' INT TERM HUP
    export CFQL_STORE=$lab/store.db SNMP_PERSISTENT_DIR=$lab/state SNMPCONFPATH=$lab MIBS=''
    export PATH=$PATH:/usr/sbin:/sbin
    ip link set lo up
}
lab_close() {
    local status=$?
    trap - EXIT
    exec 2>/dev/null # the shell tells of each process that it kills
    [ ${#pids[@]} -eq 0 ] || kill -KILL "${pids[@]}" 2>/dev/null || true
    wait 2>/dev/null
    rm -rf "$lab"
    exit "$status"
}

# The bound is for a hang: a machine loaded three times over is far from it.
wait_until() {
    local end=$((SECONDS + 240))
    until "$@"; do
        [ $SECONDS -lt $end ] || return 1
        sleep 0.05
    done
}

# start NAME COMMAND...: in the background; its log is $lab/NAME.log, its process ${pids[-1]}.
start() {
    local name=$1
    shift
    "$@" >>"$lab/$name.log" 2>&1 </dev/null &
    pids+=($!)
}
# started NAME COMMAND...: waits for the command to succeed.
started() {
    wait_until "${@:2}" && return
    echo "$1 does not start:" >&2
    tail -n 20 "$lab/$1.log" >&2
    exit 1
}

# Interfaces with fixed indexes, which need no driver.
make_interfaces() { for i in 0 1 2; do ip link add "wlan$i" index $((3 + 2 * i)) type veth peer name "far$i" index $((103 + i)) || return; done; }
cfql() { "$build/tool/cfql" "$@"; }
make_store() { cfql init >/dev/null && cfql import "$top/packaging/example.toml" >/dev/null; }

# start_agent [LINE...]: with the configuration to start from.
start_agent() {
    sed "s,^dlmod .*,dlmod ieee802dot11 $build/src/ieee802dot11.so," "$top/packaging/snmpd.conf" >"$lab/agent.conf"
    [ $# -eq 0 ] || printf '%s\n' "$@" >>"$lab/agent.conf"
    start agent snmpd -f -Lo -C -c "$lab/agent.conf"
    started agent grep -qs 'NET-SNMP version' "$lab/agent.log"
}

get() { curl -s --noproxy '*' --max-time 60 "$@"; }
start_exporter() {
    start exporter prometheus-snmp-exporter --config.file="$shipped/snmp.yml" --web.listen-address=$exporter_at
    started exporter get -fo /dev/null http://$exporter_at/
}
# scrape MODULE: prints what the exporter returns for the agent.
scrape() { get "http://$exporter_at/snmp?module=$1&target=${2-127.0.0.1}"; }

# The shipped example, with other targets and shorter intervals.
prometheus_conf() {
    cp "$shipped/dot11.rules.yml" "$shipped/dot11.html" "$lab"
    sed -e 's/\[192.0.2.11, 192.0.2.12\]/[127.0.0.1]/' -e 's/\(_interval\): .*/\1: 500ms/' "$shipped/prometheus.yml" >"$lab/prometheus.yml"
}
start_prometheus() {
    start prometheus prometheus --config.file="$lab/prometheus.yml" --storage.tsdb.path="$lab/data" --web.listen-address=$prometheus_at \
        --web.console.templates="$lab" --web.console.libraries="$lab" --log.level=warn
    started prometheus get -fo /dev/null http://$prometheus_at/-/ready
}
# query EXPRESSION: a line for each sample, as "{label="value", ...} => value", without the time.
query() { promtool query instant http://$prometheus_at "$1" | sed 's/ @\[[^]]*\]$//'; }
console() { get "http://$prometheus_at/consoles/dot11.html${1-}"; }

# fact NAME COMMAND...: one line for each fact; `failures` counts those that do not hold.
failures=0
fact() {
    local name=$1
    shift
    if "$@"; then printf 'ok      %s\n' "$name"; else printf 'FAILED  %s\n' "$name" && failures=$((failures + 1)); fi
}
