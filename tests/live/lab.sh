# shellcheck shell=bash
# All that a script inside the machine needs.
export PATH=/usr/sbin:/usr/bin:/sbin:/bin
failures=0
# shellcheck source=tests/live/checks.sh
. ./checks.sh
# shellcheck source=tests/live/access-point.sh
. ./access-point.sh
# shellcheck source=tests/live/witnesses.sh
. ./witnesses.sh
# shellcheck source=tests/live/agent.sh
. ./agent.sh
