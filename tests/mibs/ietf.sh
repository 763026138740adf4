# The places of our MIB modules and of the IETF's, which come with a package for node (./check installs it); without them the
# tests that source this file are skipped.
# shellcheck shell=sh
top=$(cd "$(dirname "$0")/../.." && pwd)
ours=$top/mibs
ietf=$top/tests/node/node_modules/net-snmp/lib/mibs
if [ ! -d "$ietf" ]; then
    echo "The IETF's MIB modules are not here: npm ci --prefix tests/node" >&2
    exit 77
fi
