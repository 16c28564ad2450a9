#!/bin/bash
# The whole chain of the hold with the lid closed: the real program, the real helper, the real login manager.
# deep_hold_test.sh [SECONDS]: for how long the lease is watched.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"
. "$(dirname "${BASH_SOURCE[0]}")/helper.sh"

# Seconds that the lease has left.
lease_left() {
  local expiry
  expiry=$(ask '{"command":"status"}' | sed -n 's/.*"leaseExpiresAt":\([0-9]*\).*/\1/p')
  echo $((${expiry:-0} + 978307200 - EPOCHSECONDS))
}
lease_has_left() { [ "$(lease_left)" -ge "$1" ]; }
lid_hold_is() { ctl status | grep -q "kestrel-helper, lid: $1"; }

services_start_system_bus
services_start_login_manager
start_helper
start_kestrel
ctl settings set releaseDelaySeconds 1 >/dev/null

begin 'an agent works'
relay --agent claude --state working
services_wait_until 1 status_has isDeepHoldActive true || fail 'no lease within a second'
services_wait_until 1 eval '[[ $(services_inhibitors Kestrel) == *handle-lid-switch* ]]' || fail 'the lid is not inhibited'
services_wait_until 2 lid_hold_is held || fail "the status: $(ctl status)"
has 'the report' '"isDeepHoldActive": true' "$(ctl status --json)"
least=60
for ((i = 0; i < ${1:-10}; ++i)); do
  sleep 1
  left=$(lease_left)
  least=$((left < least ? left : least))
done
echo "   the lease never had less than $least s left"
[ "$least" -ge 45 ] || fail "only $least s left"

begin 'it stops, and works again'
relay --agent claude --state idle
services_wait_until 4 status_has isDeepHoldActive false || fail 'the lease is kept'
same 'no inhibitor' '' "$(services_inhibitors Kestrel)"
relay --agent claude --state working
services_wait_until 1 status_has isDeepHoldActive true || fail 'no second lease'

begin 'the protection is switched off and on during a hold'
ctl settings set deepLidProtectionEnabled false >/dev/null
services_wait_until 2 status_has isDeepHoldActive false || fail 'the lease is kept'
ctl settings set deepLidProtectionEnabled true >/dev/null
services_wait_until 2 lid_hold_is held || fail 'not held again'

begin 'the login manager is killed and started again'
services_restart_login_manager removed
services_wait_until 3 lid_hold_is held || fail 'not held again'

begin 'the helper is killed and started again'
lease=$(ask '{"command":"status"}' | sed 's/.*"activeLeaseId":"\([^"]*\)".*/\1/')
stop_helper KILL
services_wait_until 13 lid_hold_is unavailable || fail 'its death is not noticed'
start_helper
status_has activeLeaseId "\"$lease\"" || fail 'the lease is forgotten'
services_wait_until 2 lid_hold_is held || fail "not held again: $(ctl status)"

begin 'Kestrel ends by SIGTERM'
stop_kestrel
same 'its status' 0 $?
status_has isDeepHoldActive false || fail 'the lease is kept'
same 'no inhibitor' '' "$(services_inhibitors Kestrel)"

begin 'Kestrel is killed'
start_kestrel
ctl hold on >/dev/null
services_wait_until 2 status_has isDeepHoldActive true || fail 'no lease'
stop_kestrel KILL
left=$(lease_left)
sleep $((left - 3))
status_has isDeepHoldActive true || fail 'the lease ended early'
took=$(milliseconds_until 8 status_has isDeepHoldActive false) || fail 'the lease never ends'
echo "   released $((took - 3000)) ms after the lease's end"
same 'no inhibitor' '' "$(services_inhibitors Kestrel)"
has 'the log' 'Watchdog releasing deep hold!' "$(cat "$SERVICES_DIR/helper.log")"
finish_helper
