#!/bin/bash
# The first start on a display: the introduction by keys and by mouse, the trial through the socket, the main window.
# With KESTREL_PICTURES=FOLDER in the environment, what was seen is kept there.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
for tool in Xvfb xdotool import; do
  command -v $tool >/dev/null || services_skip "$tool is not installed"
done
services_enter "$0" "$@"
. "$SERVICES_HOME/../kestrel.sh"
. "$SERVICES_HOME/display.sh"
. "$SERVICES_HOME/../tray.sh"

welcome='Welcome to Kestrel'
window() { xdotool search --onlyvisible --name "^$1\$" | head -n 1 | grep .; }
# came NAME: sets `at` to the window of that name, with the keyboard.
came() {
  services_wait_until 10 window "$1" >/dev/null || fail "no window '$1'"
  at=$(window "$1")
  xdotool windowraise "$at" windowfocus --sync "$at"
}
gone() { ! window "$1" >/dev/null; }
# Where nobody manages windows, the keyboard goes where it is told.
keys() { xdotool windowfocus "$at" key --delay 60 "$@"; }
click() { xdotool mousemove --window "$at" "$1" "$2" click 1 && sleep 0.1; }
picture() { [ -z "${KESTREL_PICTURES:-}" ] || import -window "$at" "$KESTREL_PICTURES/$1.png"; }
# shows COLOUR: as it stands in the mascot, bytes in hexadecimal; no text and no control has it.
shows() { import -window "$at" -depth 8 rgb:- | LC_ALL=C grep -qaP "$1"; }
joy='\x93\x33\xEA'
alarm='\xEF\x44\x44'
setting() { ctl settings get "$1"; }
setting_is() { [ "$(setting "$1")" = "$2" ]; }

services_start_system_bus
services_start_session_bus
services_start_login_manager
display_start

begin 'the first start, page by page with the keyboard; the trial holds'
same 'settings before' no "$([ -e "$KESTREL_SETTINGS" ] && echo yes || echo no)"
start_desktop
came "$welcome"
picture page-1
for page in 2 3 4; do
  keys Return
  sleep 0.2
  picture page-$page
done
shows "$joy" && fail 'the trial is shown as done before it began'
# From "Done" back to the button above it.
keys shift+Tab space
services_wait_until 3 hold_is inForce || fail "the hold is '$(hold_state)'"
services_wait_until 3 shows "$joy" || fail 'the page does not say that it holds'
has 'the inhibitors' 'idle|Kestrel|' "$(services_inhibitors Kestrel)"
picture page-4-held
same 'not done yet' false "$(setting hasCompletedOnboarding)"
# The button is off meanwhile, and "Done" has the keyboard.
keys Return
services_wait_until 3 gone "$welcome" || fail 'the introduction is still there'
services_wait_until 2 grep -q '"hasCompletedOnboarding": *true' "$KESTREL_SETTINGS" || fail 'not in the settings file'

begin 'the main window: a section and a switch by mouse, another section by keys'
came Kestrel
# Below the line that says why it opened.
click 80 300
picture settings
click 876 118
services_wait_until 2 setting_is masterEnabled false || fail 'the switch switched nothing'
keys space
services_wait_until 2 setting_is masterEnabled true || fail 'the space bar switched nothing'
keys ctrl+2
sleep 0.3
picture agents
stop_kestrel
same 'its end' 0 $?

begin 'the second start has no introduction'
start_desktop
sleep 1
gone "$welcome" || fail 'the introduction is there again'
stop_kestrel

begin 'once more with the mouse, without a login manager: the trial says so'
services_stop logind KILL
rm "$KESTREL_SETTINGS"
start_desktop
came "$welcome"
for page in 2 3 4; do click 621 442; done
click 348 345
services_wait_until 10 shows "$alarm" || fail 'the page does not say that nothing holds'
shows "$joy" && fail 'the page says that it holds'
picture page-4-not-held
click 560 442
picture page-3-again
click 621 442
click 619 442
services_wait_until 3 gone "$welcome" || fail 'the introduction is still there'
setting_is hasCompletedOnboarding true || fail 'it does not count as done'
stop_kestrel

finish
