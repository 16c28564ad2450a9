#!/bin/bash
# The deep hold against the lid of a made-up machine, by the real login manager and the real UPower.
. "$(dirname "${BASH_SOURCE[0]}")/machine.sh"
machine_enter "$0" /usr/libexec/upowerd "$SERVICES_LOGIN_MANAGER"
. "$MACHINE_HOME/../kestrel.sh"
. "$MACHINE_HOME/../helper.sh"

# said FROM TEXT: the login manager, since a line of its log; reading the lid lets it look at it again.
said() {
  busctl --system get-property org.freedesktop.login1 /org/freedesktop/login1 org.freedesktop.login1.Manager LidClosed \
    >/dev/null
  tail -n "+$1" "$SERVICES_DIR/logind.log" | grep -q "$2"
}
line() { wc -l <"$SERVICES_DIR/logind.log"; }

mkdir -p "$MACHINE_ROOT/sys/power" /run/systemd/logind.conf.d
echo 'freeze mem disk' >"$MACHINE_ROOT/sys/power/state"
echo '[s2idle] deep' >"$MACHINE_ROOT/sys/power/mem_sleep"
printf '[Login]\nHoldoffTimeoutSec=1s\n' >/run/systemd/logind.conf.d/quick.conf
machine_start logind org.freedesktop.login1 env SYSTEMD_LOG_TARGET=console SYSTEMD_LOG_LEVEL=debug "$SERVICES_LOGIN_MANAGER"
start_helper
ask_for acquire A 60 >/dev/null
shown 1 held
sleep 1.1 # A login manager that has just started leaves the lid alone.

begin 'the lid is closed'
start=$(line)
machine move-lid closed
services_wait_until 5 said "$start" 'handle-lid-switch is inhibited' || fail 'the lid is not inhibited'
sleep 0.5
said "$start" '^Suspending' && fail 'it suspends'
begin 'and the hold ends'
start=$(line)
ask_for release >/dev/null
services_wait_until 10 said "$start" '^Suspending' || fail 'it does not suspend'

begin 'the battery runs out'
machine move-lid open
start_upower # Not before: it would take the movements of the lid from the login manager.
ask_for acquire A 60 >/dev/null
shown 1 held
machine_set BAT0 status Discharging capacity 3
shown 2 nothing
same acquire '{"error":"The battery is almost empty","ok":false}' "$(ask_for acquire)"
stop_helper TERM
finish_helper
