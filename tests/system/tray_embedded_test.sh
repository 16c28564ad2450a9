#!/bin/bash
# The status icon in a tray that embeds windows, and a display that goes away.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
for tool in Xvfb trayer xwininfo; do
  command -v $tool >/dev/null || services_skip "$tool is not installed"
done
services_enter "$0" "$@"
. "$SERVICES_HOME/../kestrel.sh"
. "$SERVICES_HOME/display.sh"
. "$SERVICES_HOME/../tray.sh"

trayer_start() { services_start trayer trayer --edge bottom --align right --widthtype request --height 28; }
# The icon's window, which is small and below the tray's.
embedded() { xwininfo -root -tree | grep -E '"Kestrel": \("kestrel.*" [^ ]*\)  [0-9]{2}x[0-9]{2}\+'; }
command_line() { tr '\0' ' ' 2>/dev/null <"/proc/${SERVICES_PID[kestrel]}/cmdline"; }
goes_on_without() { command_line | grep -q -- --headless && ctl status; }
working='Active (1 working agent) — Claude Code working'

begin 'without a session bus, a tray that comes late, dies and comes again'
display_start
start_desktop
trayer_start
services_wait_until 10 embedded || fail 'no icon'
services_stop trayer KILL
services_wait_until 5 eval '! embedded' || fail 'the icon is still there'
trayer_start
services_wait_until 10 embedded || fail 'no icon in the new tray'

begin 'the display goes away while an agent works'
relay --agent claude --state working --session-id a
services_wait_until 5 status_is "$working" || fail "at first: $(status_line)"
services_stop xvfb KILL
took=$(milliseconds_until 5 goes_on_without) || fail "it has become: $(command_line)"
echo "   it answers again after $took ms"
same 'it still holds' "$working" "$(status_line)"
same 'said once' 1 "$(logged 'There is no display, or it was lost')"

begin 'started again on a new display'
first=${SERVICES_PID[kestrel]}
rm "$SERVICES_DIR/display"
display_start
start_desktop
services_wait_until 5 eval '! kill -0 $first' || fail 'the one without a display is still there'
services_wait_until 5 eval 'command_line | grep -qv headless && ctl status' || fail "it has become: $(command_line)"
same 'it still holds' "$working" "$(status_line)"
trayer_start
services_wait_until 10 embedded || fail 'no icon on the new display'
stop_kestrel
same 'its end' 0 $?

begin 'a display that cannot be reached'
DISPLAY=:77 start_desktop
services_wait_until 5 goes_on_without || fail "it has become: $(command_line)"
stop_kestrel
same 'its end' 0 $?

finish
