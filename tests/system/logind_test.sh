#!/bin/bash
# Holds against the real login manager and stand-ins for a desktop. SERVICES_BIN: the folder of the built programs.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"

why='Kestrel: 1 working agent'
shown_why=$why
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
  sed 's/^/  probe: /' "$SERVICES_DIR/probe.log"
  services_inhibitors | sed 's/^/  shown: /'
}
begin() { echo "-- $*"; : >"$SERVICES_DIR/probe.log"; }

# The kinds that the login manager shows for the probe, as it was asked: "idle sleep".
shown_kinds() {
  services_inhibitors Kestrel | grep -F "|Kestrel|$shown_why|block|$(id -u)|${SERVICES_PID[probe]}" | cut -d'|' -f1 | paste -sd' '
}
shows() { [ "$(shown_kinds)" = "$1" ] && [ "$(services_inhibitors Kestrel | wc -l)" = "$(wc -w <<<"$1")" ]; }
says() { grep '^\(changed \|\)evidence' "$SERVICES_DIR/probe.log" | tail -n 1 | grep -qF -- "$1"; }

# expect SECONDS KINDS EVIDENCE: what both sides agree on in time, and that it stays so.
expect() {
  services_wait_until "$1" shows "$2" || fail "shown within $1 s: '$2', but it is '$(shown_kinds)'"
  services_wait_until "$1" says "$3" || fail "evidence: '$3'"
  sleep 0.3
  shows "$2" || fail "shown later: '$2', but it is '$(shown_kinds)'"
}
start_probe() {
  services_start_talking probe "$SERVICES_BIN/hold_probe"
  services_tell probe "take ${1:-system} $why"
}
# A second is what the end of the holder may take to show, however it ends.
stop_probe() {
  if [ "${1:-}" = KILL ]; then
    services_stop probe KILL
  else
    services_tell probe quit
    wait "${SERVICES_PID[probe]}" || fail "the probe ended with status $?"
    unset 'SERVICES_PID[probe]'
  fi
  services_wait_until 1 shows '' || fail 'something is left'
}

services_start_system_bus
services_start_login_manager
both='login manager/idle=held; login manager/sleep=held'

begin 'no desktop: one idle and one sleep inhibitor, until the release'
start_probe
expect 2 'idle sleep' "$both"
services_tell probe 'release 1'
expect 1 '' 'evidence '
services_tell probe "take system $why"
expect 2 'idle sleep' "$both"

begin 'a release and a taking in one go let nothing go'
before=$(ls /run/systemd/inhibit | paste -sd' ')
services_tell probe $'release 2\ntake system '"$why"
expect 1 'idle sleep' "$both"
[ "$(ls /run/systemd/inhibit | paste -sd' ')" = "$before" ] || fail 'the inhibitors were taken anew'

for records in kept removed; do
  begin "the login manager is killed and started again, records $records"
  before=$(ls /run/systemd/inhibit | paste -sd' ')
  services_kill_login_manager
  services_wait_until 2 says 'idle=lost (login manager is not running)' || fail 'the loss is not seen'
  services_restart_login_manager "$records"
  expect 2 'idle sleep' "$both"
  [ "$records" = removed ] || [ "$(ls /run/systemd/inhibit | paste -sd' ')" = "$before" ] ||
    fail 'what the login manager still knew was taken anew'
done

begin 'the same with a reason that the login manager garbles in its records'
services_tell probe $'release 3\ntake system Kestrel: 1 working agent — Claude Code'
shown_why='Kestrel: 1 working agent \342\200\224 Claude Code'
expect 2 'idle sleep' "$both"
services_restart_login_manager kept
expect 2 'idle sleep' "$both"

begin 'the bus goes with everything on it, and comes back'
services_stop system-bus KILL
services_kill_login_manager
services_wait_until 2 says 'no system bus' || fail 'the lost bus is not seen'
services_start_system_bus
services_start_login_manager
expect 5 'idle sleep' "$both"

begin 'kill -9 of the holder'
stop_probe KILL
shown_why=$why

services_start_session_bus
for name in org.gnome.SessionManager org.freedesktop.PowerManagement; do
  begin "a desktop that grants: $name"
  services_start_desktop "$name"
  start_probe
  expect 2 'idle' 'login manager/idle=held; '
  says '/desktop=held' || fail 'the desktop does not hold'
  services_stop desktop KILL
  expect 2 'idle sleep' 'login manager/sleep=held'
  services_start_desktop "$name"
  expect 2 'idle' '/desktop=held'
  services_tell probe 'release 1'
  services_wait_until 2 grep -q '^uninhibit [0-9]*$' "$SERVICES_DIR/desktop.log" || fail 'the cookie is kept'
  stop_probe
  services_stop desktop
done

begin 'a desktop that refuses, and one that is silent until after the release'
services_start_desktop org.gnome.SessionManager
services_tell desktop refuse
start_probe
expect 2 'idle sleep' 'desktop session/desktop=refused (Not while presenting (AccessDenied))'
services_tell probe 'release 1'
expect 1 '' 'evidence '
: >"$SERVICES_DIR/desktop.log"
services_tell desktop silent
services_tell probe "take system $why"
services_wait_until 2 grep -q '^silent ' "$SERVICES_DIR/desktop.log" || fail 'the desktop is not asked'
services_tell probe 'release 2'
expect 2 '' 'evidence '
services_tell desktop grant
services_wait_until 2 grep -q '^uninhibit [0-9]*$' "$SERVICES_DIR/desktop.log" || fail 'a late cookie is kept'

begin 'a desktop that forgets'
services_tell probe "take system $why"
expect 2 'idle' 'desktop session/desktop=held'
services_tell desktop $'refuse\nforget'
services_wait_until 13 grep -q 'desktop session is lost' "$SERVICES_DIR/probe.log" || fail 'the loss is not seen'
expect 2 'idle sleep' 'desktop session/desktop=refused'
stop_probe
services_stop desktop

begin 'the display: the screen saver, else the session manager, else a failure'
start_probe display
services_wait_until 2 grep -q '^failed' "$SERVICES_DIR/probe.log" || services_tell probe "take display $why"
services_wait_until 2 says 'desktop session/display=unavailable (desktop session service is not running)' ||
  fail 'no reason is given'
services_start_desktop org.gnome.SessionManager
services_wait_until 2 says 'display=unavailable (it is there now' || fail 'a new service is not seen'
services_tell probe "take display $why"
services_wait_until 2 says 'desktop session/display=held' || fail 'the session manager does not hold'
grep -q 'flags 8' "$SERVICES_DIR/desktop.log" || fail 'wrong flags'
stop_probe
services_stop desktop
services_start_desktop org.gnome.SessionManager org.freedesktop.ScreenSaver
start_probe display
services_wait_until 2 says 'evidence screen saver/display=held' || fail 'the screen saver does not hold'
stop_probe
services_stop desktop

begin 'a login manager that answers after the release'
start_probe
expect 2 'idle sleep' "$both"
services_tell probe 'release 1'
expect 2 '' 'evidence '
kill -STOP "${SERVICES_PID[logind]}"
services_tell probe "take system $why"
services_wait_until 2 says 'login manager/idle=pending' || fail 'it is not pending'
services_tell probe 'release 2'
sleep 0.3
kill -CONT "${SERVICES_PID[logind]}"
expect 2 '' 'evidence '
stop_probe

begin 'no login manager at first'
services_kill_login_manager
start_probe
sleep 0.3
services_tell probe "take system $why"
services_wait_until 2 grep -q '^failed 113' "$SERVICES_DIR/probe.log" || fail 'creating does not fail'
services_wait_until 2 says 'login manager/idle=unavailable (login manager is not running)' || fail 'no reason is given'
services_start_login_manager
# The first request is accepted only when it came before the bus had answered.
grep -q '^created' "$SERVICES_DIR/probe.log" || services_tell probe "take system $why"
expect 2 'idle sleep' "$both"
stop_probe

[ "$failures" = 0 ] && echo 'all passed'
exit "$((failures > 0))"
