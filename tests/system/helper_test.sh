#!/bin/bash
# The helper at the real login manager: what it answers, whom it serves, and how its hold survives and ends.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"
. "$(dirname "${BASH_SOURCE[0]}")/helper.sh"
ok='{"ok":true}'
services_start_system_bus
services_start_login_manager
start_helper

begin 'a lease'
same acquire "$ok" "$(ask_for acquire)"
shown 1 held
same 'in pieces' "$ok" "$("$SERVICES_BIN/socket_probe" parts "$HELPER_SOCKET" '{"comm' 'and":"rel' 'ease"}')"
shown 1 nothing

begin 'bad input, beside clients that are slow'
services_start slow "$SERVICES_BIN/socket_probe" parts "$HELPER_SOCKET" '{' {1..90}
ask_for acquire >/dev/null
for request in garbage "$(printf '[%.0s' {1..4000})" "{\"a\":$(printf '{"a":%.0s' {1..900})" \
  '{"command":"release","leaseId":{}}' '{"command":"sleep"}' '{"command":"acquire","leaseId":"B","ttlSeconds":"60"}' \
  '{"command":"acquire","leaseId":"B","ttlSeconds":NaN}' '{"command":"acquire","leaseId":"B","ttlSeconds":1e400}'; do
  took=$(milliseconds_until 3 ask "$request")
  has "${request:0:30}" '"ok":false' "$(ask "$request")"
  [ "$took" -lt 1500 ] || fail "an answer only after $took ms"
done
has '9000 bytes' 'too large' "$("$SERVICES_BIN/socket_probe" fill "$HELPER_SOCKET" 9000)"
has 'silence' '1.0' "$("$SERVICES_BIN/socket_probe" silent "$HELPER_SOCKET")"
status_has activeLeaseId '"A"' || fail 'the lease is not what it was'

begin 'nobody renews'
same renew "$ok" "$(ask_for renew B -1)"
shown 1 held
shown 13 nothing
has 'the log' 'Watchdog releasing deep hold!' "$(cat "$SERVICES_DIR/helper.log")"

begin 'the login manager starts anew'
ask_for acquire A 60 >/dev/null
shown 1 held
services_restart_login_manager removed
shown 2 held

begin 'kill -9, and started again'
stop_helper KILL
shown 1 nothing
start_helper
shown 2 held
status_has activeLeaseId '"A"' || fail 'the lease is forgotten'

same 'a second helper' 'kestrel-helper is already running.' "$(in_home "$SERVICES_BIN/kestrel-helper" 2>&1)"
shown 1 held

begin 'SIGTERM and uninstall'
stop_helper TERM
same status 0 $?
shown 1 nothing
[ ! -e "$HELPER_SOCKET" ] || fail 'the socket is left'
has 'the state' '"isHolding":false' "$(cat $HELPER_STATE)"
start_helper
ask_for acquire >/dev/null
same uninstall "$ok" "$(ask '{"command":"uninstall"}')"
wait "${SERVICES_PID[helper]}"
same status 0 $?
shown 1 nothing
same 'files left' '' "$(ls -d /run/kestrel-helper/* "$HELPER_SOCKET" 2>/dev/null)"

begin 'units that are masked'
mkdir -p /run/systemd/system && ln -s /dev/null /run/systemd/system/sleep.target
start_helper
status_has currentSystemSleepDisabled true || fail 'sleep counts as possible'
rm /run/systemd/system/sleep.target
status_has currentSystemSleepDisabled false || fail 'sleep counts as impossible'

begin 'another user, and who sits at the machine'
nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups)
if "${nobody[@]}" true 2>/dev/null; then
  cp "$SERVICES_BIN"/{socket_probe,kestrel-helper} "$SERVICES_DIR" # Where the other user can reach them.
  as_nobody() { "${nobody[@]}" "$SERVICES_DIR/socket_probe" send "$HELPER_SOCKET" '{"command":"release"}'; }
  same 'a stranger' '' "$(as_nobody)"
  has 'the log' 'Refused a connection of user 65534' "$(cat "$SERVICES_DIR/helper.log")"
  printf 'ACTIVE=c1\nACTIVE_UID=65534\n' >/run/systemd/seats/seat0
  same 'at the machine' "$ok" "$(as_nobody)"
  stop_helper TERM

  begin 'run by a user'
  mkdir -p "$SERVICES_DIR/home/.local" && chmod -R 0777 "$SERVICES_DIR/home"
  HELPER_POWERLESS=("${nobody[@]}") SERVICES_BIN=$SERVICES_DIR HELPER_SOCKET=$KESTREL_RUN/kestrel-helper.sock
  start_helper
  same 'the socket' 600 "$(stat -c %a "$HELPER_SOCKET")"
  same acquire "$ok" "$(ask_for acquire)"
  [ -s "$KESTREL_RUN/helper-state.json" ] || fail 'no state is kept'
  services_wait_until 2 grep -q 'hold at the login manager is refused' "$SERVICES_DIR/helper.log" || fail 'no refusal'
  status_has currentSystemSleepDisabled false || fail 'a refused hold counts as held'
fi
stop_helper INT
same status 0 $?
finish_helper
