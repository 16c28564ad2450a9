#!/bin/bash
# Helper and application, killed a hundred times at any moment, leave the machine able to sleep.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"
. "$(dirname "${BASH_SOURCE[0]}")/helper.sh"
services_start_system_bus
services_start_login_manager
seed=${1:-$EPOCHSECONDS}
RANDOM=$seed
echo "   seed $seed"
seen=0

is_running() { kill -0 "${SERVICES_PID[$1]:-none}" 2>/dev/null; }
kestrel_environment
for round in {1..100}; do
  is_running helper || services_start helper "${KESTREL_ENVIRONMENT[@]}" "$SERVICES_BIN/kestrel-helper"
  [ $((RANDOM % 4)) = 0 ] || services_wait_until 5 test -S "$HELPER_SOCKET"
  is_running probe || services_start probe "$SERVICES_BIN/deep_hold_probe" "$HELPER_SOCKET" 10
  sleep 0.$(printf '%03d' $((RANDOM % 120)))
  [ $((round % 10)) != 0 ] || { kinds_are '' || seen=$((seen + 1)); }
  victim=$((RANDOM % 3))
  [ $victim = 0 ] || services_stop helper KILL
  [ $victim = 1 ] || services_stop probe KILL
  [ $((round % 20)) != 0 ] || { services_stop helper KILL && shown 1 nothing; }
done

begin 'the last lease lapses'
services_stop probe KILL
has 'leases' granted "$(cat "$SERVICES_DIR/probe.log")"
[ "$seen" -gt 0 ] || fail 'nothing was ever held'
is_running helper || start_helper
shown 14 nothing
status_has isDeepHoldActive false || fail 'a lease is left'
same 'held by others' '' "$(services_inhibitors)"
stop_helper TERM
finish_helper
