#!/bin/bash
# The status icon in a real panel that keeps its list on the session bus.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
for tool in Xvfb xfce4-panel python3; do
  command -v $tool >/dev/null || services_skip "$tool is not installed"
done
services_enter "$0" "$@"
. "$SERVICES_HOME/../kestrel.sh"
. "$SERVICES_HOME/display.sh"
. "$SERVICES_HOME/../tray.sh"

display_start
services_start_session_bus

begin 'an icon in the panel'
panel_start
services_wait_until 40 host_is_there || services_skip 'no panel can be run here'
start_desktop
icon_came
ctl settings set releaseDelaySeconds 0 >/dev/null
has 'the tooltip' 'Kestrel: Ready — No active agent sessions' "$(printf '%b' "$(item_get ToolTip)")"
same 'what is linked' '' "$(ldd "$SERVICES_BIN/kestrel" | grep Qt)"

begin 'it moves while an agent works, and rests otherwise'
relay --agent claude --state working --session-id a
services_wait_until 5 tooltip_has 'Awake (1 active)' || fail "the tooltip is $(item_get ToolTip)"
moved=$(bus_messages 3)
[ "$moved" -ge 10 ] || fail "only $moved messages while an agent works"
relay --agent claude --state idle --session-id a
services_wait_until 5 tooltip_has 'Ready' || fail "the tooltip is $(item_get ToolTip)"
same 'messages at rest' 0 "$(bus_messages 5)"

begin 'the menu, as the panel gets it'
same 'its items' 'Kestrel — Ready: No active agent sessions

Open Kestrel…

Pause for 30 Minutes
Pause for 1 Hour
Disable Kestrel

Settings…

Quit Kestrel' "$(menu_labels)"
has 'the header' ' disabled Kestrel — Ready' "$(menu)"
menu_click 'Pause for 30 Minutes'
services_wait_until 5 status_is 'Safety blocked: Protection paused' || fail "after a pause: $(status_line)"
menu_click 'Resume Protection'
services_wait_until 5 status_is 'Sleep enabled — No active agent sessions' || fail "after resuming: $(status_line)"
menu_click 'Disable Kestrel'
services_wait_until 5 status_is 'Safety blocked: Master switch disabled' || fail "after disabling: $(status_line)"
menu_click 'Enable Kestrel'
services_wait_until 5 status_is 'Sleep enabled — No active agent sessions' || fail "after enabling: $(status_line)"

begin 'a second start shows the window'
has 'its answer' 'Kestrel is already running.' "$(in_home DISPLAY="$DISPLAY" timeout 10 "$SERVICES_BIN/kestrel" 2>/dev/null)"
window_is_shown() { xwininfo -root -tree | grep -q '"Kestrel": ("kestrel-desktop"\|"Kestrel": ("kestrel"'; }
services_wait_until 5 window_is_shown || fail 'no window'

begin 'the panel is killed, and comes again'
services_stop panel KILL
services_wait_until 5 eval '! item' || fail 'the icon is still listed'
panel_start
icon_came 60 'in the new panel'
menu_click 'Pause for 1 Hour'
services_wait_until 5 status_is 'Safety blocked: Protection paused' || fail "the new menu does nothing: $(status_line)"
ctl resume >/dev/null

begin 'quitting'
menu_click 'Quit Kestrel'
services_wait_until 5 eval '! kestrel_lives' || fail 'it did not end'
wait "${SERVICES_PID[kestrel]}"
same 'its status' 0 $?

begin 'a panel that comes late'
services_stop panel KILL
start_desktop
services_wait_until 10 logged 'There is no system tray yet' || fail 'nothing said'
services_wait_until 5 window_is_shown || fail 'no window instead'
panel_start
icon_came 60 'in the late panel'

finish
