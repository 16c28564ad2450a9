#!/bin/bash
# Notifications on a real notification daemon, which is absent, slow, and restarts.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
for tool in Xvfb dunst dunstctl dbus-monitor; do
  command -v $tool >/dev/null || services_skip "$tool is not installed"
done
services_enter "$0" "$@"
. "$SERVICES_HOME/../kestrel.sh"
. "$SERVICES_HOME/display.sh"

start_dunst() {
  printf '[urgency_normal]\ntimeout = 0\n' >"$SERVICES_DIR/dunstrc"
  services_start dunst dunst -conf "$SERVICES_DIR/dunstrc"
  services_wait_name --user org.freedesktop.Notifications
}
displayed_are() { [ "$(dunstctl count displayed)" = "$1" ]; }
# shown_are TEXT...: what the screen shows, and no longer afterwards, in any order; "<b>TITLE</b>\nBODY" each.
shown_are() {
  services_wait_until 5 displayed_are $# || fail "$(dunstctl count displayed) are displayed, not $#"
  dunstctl close-all
  services_wait_until 5 displayed_are 0
  same 'shown' "$(printf '%s\n' "$@" | sort)" "$(dunstctl history | grep -o '<b>[^"]*' | head -n $# | sort)"
}
# The number that each call asked to replace, oldest first.
calls() { grep -A 2 'member=Notify$' "$SERVICES_DIR/monitor.log" | sed -n 's/^ *uint32 //p'; }
calls_are() { [ "$(calls | wc -l)" = "$1" ]; }
called() { services_wait_until 5 calls_are "$1" || fail "$(calls | wc -l) calls, not $1"; }
started='<b>Kestrel is protecting this Mac</b>\n'
finished='<b>Coding agents finished</b>\nNormal sleep behavior has been restored.'

begin 'no bus, then no service, which is no failure and said once'
display_start
probe_start
probe finished
services_stop probe
services_start_session_bus
services_start monitor dbus-monitor --session "interface='org.freedesktop.Notifications'"
services_wait_until 5 grep -q NameLost "$SERVICES_DIR/monitor.log"
probe_start
probe finished
probe thermal
called 2
start_dunst
probe finished
shown_are "$finished"
same 'said, and called a failure' 1,0 "$(said 'Notifications are not available here'),$(said 'Failed to post')"

begin 'each kind, replaced by its next'
for command in 'started 2' 'battery 14' thermal finished; do probe "$command"; done
probe 'battery 12'
called 8
shown_are "${started}2 coding agent sessions working." "$finished" \
  '<b>Battery limit reached</b>\nKestrel released sleep protection at 12%.' \
  '<b>Thermal safety cutoff</b>\nKestrel released sleep protection so macOS can cool down normally.'
has 'the sound asked for' 'message-new-instant' "$(tail -n 30 "$SERVICES_DIR/monitor.log")"

begin 'none when disabled, and a slow service gets the first and the latest, while nobody waits for it'
for command in 'notifications off' 'started 3' 'notifications on'; do probe "$command"; done
kill -STOP "${SERVICES_PID[dunst]}"
for count in 4 5 6; do probe "started $count"; done
kill -CONT "${SERVICES_PID[dunst]}"
called 10
shown_are "${started}6 coding agent sessions working."

begin 'a new service knows no old numbers'
services_stop dunst KILL
start_dunst
for count in 7 8; do
  probe "started $count"
  called $((count + 4))
  shown_are "$started$count coding agent sessions working."
done
same 'the first replaces none' 0 "$(calls | sed -n 11p)"
[ "$(calls | sed -n 12p)" != 0 ] || fail 'the second replaces none'

finish
