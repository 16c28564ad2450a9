# A made-up machine, real services that see it, and a probe that tells what is read of it. Sourced by the scripts
# beside this file, which go on inside of the private world of ../services/lib.sh.
. "$(dirname "${BASH_SOURCE[0]}")/../services/lib.sh"

MACHINE_HOME=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
failures=0

# machine_enter SCRIPT PROGRAM...: skips when one of the programs or of the mock's parts is missing.
machine_enter() {
  local script=$1 program
  shift
  for program in umockdev-wrapper "$@"; do
    command -v "$program" >/dev/null || services_skip "$program is not installed"
  done
  /usr/bin/python3 -c 'import gi; gi.require_version("UMockdev", "1.0"); from gi.repository import UMockdev' \
    2>/dev/null || services_skip 'the Python binding of umockdev is not installed'
  services_enter "$script"
  export SERVICES_DIR
  services_start_system_bus
  services_start_talking machine umockdev-wrapper /usr/bin/python3 "$MACHINE_HOME/mock_machine.py"
  services_wait_until 10 test -s "$SERVICES_DIR/machine.log" || services_skip 'umockdev cannot be run here'
  MACHINE_ROOT=$(head -n 1 "$SERVICES_DIR/machine.log")
  [ -d "$MACHINE_ROOT/sys" ] || { cat "$SERVICES_DIR/machine.log"; services_skip 'umockdev cannot be run here'; }
}

machine_answers() { grep -c '^done$' "$SERVICES_DIR/machine.log"; }
machine_answered() { [ "$(machine_answers)" -gt "$1" ]; }
# machine COMMAND...: see mock_machine.py.
machine() {
  local before
  before=$(machine_answers)
  services_tell machine "$*"
  services_wait_until 10 machine_answered "$before" || fail "the machine does not: $*"
}
# machine_set DEVICE ATTRIBUTE VALUE [ATTRIBUTE VALUE]...: and tells the services.
machine_set() {
  local device=$1
  shift
  while [ $# -gt 0 ]; do
    machine set "$device" "$1" "$2"
    shift 2
  done
  machine change "$device"
}
# machine_start NAME BUS_NAME PROGRAM...
machine_start() {
  local name=$1 bus_name=$2
  shift 2
  machine start "$name" "$@"
  services_wait_name --system "$bus_name" || {
    cat "$SERVICES_DIR/$name.log"
    fail "$name does not start"
  }
}
start_upower() { machine_start upower org.freedesktop.UPower /usr/libexec/upowerd; }

# start_probe [FOLDER]: stands for /sys/class/power_supply, that of the machine unless given.
start_probe() {
  services_start_talking probe "$SERVICES_BIN/hardware_probe" "${1:-$MACHINE_ROOT/sys/class/power_supply}" \
    "$SERVICES_DIR/thermal" "$SERVICES_DIR/button" "${2:-$SERVICES_DIR/input}"
}
shown() { grep "^$1 " "$SERVICES_DIR/probe.log" | tail -n 1; }
shows() { [ "$(shown "${1%% *}")" = "$1" ]; }
# expect SECONDS LINE: what the probe says in time, and still a moment later.
expect() {
  local start=${EPOCHREALTIME/./}
  services_wait_until "$1" shows "$2" || fail "not within $1 s: '$2', but '$(shown "${2%% *}")'"
  echo "   $2 after $(((${EPOCHREALTIME/./} - start) / 1000)) ms"
  sleep 0.4
  shows "$2" || fail "later: '$2', but '$(shown "${2%% *}")'"
}

begin() { echo "-- $*"; }
fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}
finish() {
  [ "$failures" = 0 ] || tail -n 40 "$SERVICES_DIR"/*.log
  [ "$failures" = 0 ] && echo 'all passed'
  exit "$((failures > 0))"
}
