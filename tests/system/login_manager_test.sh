#!/bin/bash
# From an agent's hook to a machine that is really held awake: the real program at the real login manager.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

# What the login manager shows of Kestrel: "idle sleep".
kinds() { services_inhibitors Kestrel | cut -d'|' -f1 | paste -sd' '; }
kinds_are() { [ "$(kinds)" = "$1" ]; }
# shown WITHIN KINDS: in time, and still so a moment later.
shown() {
  local took
  took=$(milliseconds_until "$1" kinds_are "$2") || fail "not shown within $1 s: '$2', but '$(kinds)'"
  sleep 0.3
  kinds_are "$2" || fail "shown later: '$2', but '$(kinds)'"
  echo "   '$2' after $took ms"
}
holds() { services_wait_until 2 hold_is "$1" || fail "the hold is '$(hold_state)', not '$1'"; }

services_start_system_bus
services_start_login_manager
start_kestrel
ctl settings set releaseDelaySeconds 1 >/dev/null

begin 'held while an agent works, and no longer'
shown 1 ''
relay --agent claude --state working
shown 2 'idle sleep'
holds inForce
why='Kestrel: Claude Code working'
same 'the inhibitors' "idle|Kestrel|$why|block|$(id -u)|${SERVICES_PID[kestrel]}
sleep|Kestrel|$why|block|$(id -u)|${SERVICES_PID[kestrel]}" "$(services_inhibitors Kestrel)"
has 'in words' 'Hold:     in force (login manager)' "$(ctl status)"
relay --agent codex --state working
services_wait_until 1 status_is 'Active (2 working agents) — Claude Code, Codex CLI working' || fail 'two agents'
has 'the reason stays' "$why|" "$(services_inhibitors Kestrel)"
ctl sessions | while read -r agent _; do relay --agent "${agent,,}" --state idle; done
services_wait_until 4 status_is 'Sleep enabled — No active agent sessions' || fail "released: $(status_line)"
shown 1 ''
holds none

for records in kept removed; do
  begin "the login manager is killed and started again, records $records"
  ctl hold on >/dev/null
  shown 2 'idle sleep'
  holds inForce
  services_kill_login_manager
  holds lost
  has 'in words' 'lost, taking it again: login manager is not running' "$(ctl status)"
  services_restart_login_manager $records
  shown 2 'idle sleep'
  holds inForce
  ctl hold off >/dev/null
  shown 1 ''
done

begin 'no login manager when the hold begins'
services_kill_login_manager
services_wait_until 2 grep -q 'login manager' "$SERVICES_DIR/kestrel.log"
ctl hold on >/dev/null
holds wanted
has 'in words' 'wanted: login manager is not running' "$(ctl status)"
services_start_login_manager
shown 3 'idle sleep'
holds inForce

begin 'kill -9'
stop_kestrel KILL
shown 1 ''

begin 'SIGTERM'
start_kestrel
shown 2 'idle sleep'
stop_kestrel
same 'its end' 0 $?
shown 1 ''

begin 'a desktop that grants its own'
services_start_session_bus
services_start_desktop org.gnome.SessionManager
start_kestrel
shown 2 idle
holds inForce
has 'in words' 'Hold:     in force (' "$(ctl status)"
has 'in words' 'desktop session' "$(ctl status | sed -n 2p)"
services_stop desktop KILL
shown 2 'idle sleep'
holds inForce
services_start_desktop org.gnome.SessionManager
shown 3 idle
ctl hold off >/dev/null
services_wait_until 2 grep -q '^uninhibit' "$SERVICES_DIR/desktop.log" || fail 'the cookie is kept'
shown 1 ''
stop_kestrel

finish
