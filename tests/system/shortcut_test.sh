#!/bin/bash
# The shortcut on a real X display, with real key presses.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
for tool in Xvfb xdotool setxkbmap; do
  command -v $tool >/dev/null || services_skip "$tool is not installed"
done
services_enter "$0" "$@"
. "$SERVICES_HOME/../kestrel.sh"
. "$SERVICES_HOME/display.sh"

toggled_are() { [ "$(said '^toggled$')" = "$1" ]; }
# toggled MORE WHAT: so often more than before (total), and no more a moment later.
toggled() {
  total=$((total + $1))
  services_wait_until 5 toggled_are $total && sleep 0.1 && toggled_are $total ||
    fail "$2: toggled $(said '^toggled$') times, not $total"
}
# toggles TIMES KEY...: how often these presses toggle; one more shows that all were seen.
toggles() { xdotool key "${@:2}" alt+super+l && toggled $(($1 + 1)) "${*:2}"; }

begin 'without a display, then with one that another program uses'
unset DISPLAY
probe_start
probe watch
probe watch
same 'refused and said' 2,1 "$(said '^refused$'),$(said 'not available here: no X display')"
services_stop probe
display_start
probe_start other
tell other watch
probe_start
xdotool key alt+super+l
probe watch
same 'refused' 1 "$(said 'not available: another program has taken it')"
tell other unwatch
probe watch

begin 'the whole combination, whatever the locks'
toggles 2 alt+super+l alt+super+l
toggles 0 alt+l super+l l ctrl+l
for lock in Num_Lock Caps_Lock Num_Lock Caps_Lock; do
  xdotool key $lock
  toggles 1 alt+super+l
done

begin 'a key that is held down'
xdotool keydown alt keydown super keydown l
sleep 1.2
xdotool keyup l keyup super keyup alt
toggled 1 'it repeats'

begin 'a layout where L is another key'
setxkbmap dvorak
sleep 0.5
toggles 1 alt+super+l

begin 'the display goes away'
services_stop xvfb KILL
services_wait_until 5 said 'is lost: the connection to the display ended' || fail 'not said'
probe unwatch

finish
