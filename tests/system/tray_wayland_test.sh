#!/bin/bash
# The status icon in a real bar on a headless Wayland compositor.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
for tool in sway waybar setpriv python3; do
  command -v $tool >/dev/null || services_skip "$tool is not installed"
done
services_enter "$0" "$@"
. "$SERVICES_HOME/../kestrel.sh"
. "$SERVICES_HOME/../tray.sh"

# The compositor refuses root.
as_nobody=(setpriv --reuid nobody --regid nogroup --clear-groups)
"${as_nobody[@]}" true 2>/dev/null || services_skip 'the compositor refuses root, and nobody else can be had here'
chown nobody "$XDG_RUNTIME_DIR"

compositor_start() {
  echo 'output HEADLESS-1 resolution 800x400' >"$SERVICES_DIR/sway.conf"
  services_start sway "${as_nobody[@]}" env HOME=/tmp XDG_RUNTIME_DIR="$XDG_RUNTIME_DIR" WLR_BACKENDS=headless \
    WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman sway -c "$SERVICES_DIR/sway.conf"
  services_wait_until 10 eval 'ls "$XDG_RUNTIME_DIR" | grep -qx "wayland-[0-9]"' || services_skip 'sway cannot be run here'
  WAYLAND_DISPLAY=$(ls "$XDG_RUNTIME_DIR" | grep -x 'wayland-[0-9]')
  export WAYLAND_DISPLAY
}
bar_start() {
  mkdir -p "$XDG_CONFIG_HOME/waybar"
  echo '{"layer":"top","height":28,"modules-right":["tray"],"tray":{"icon-size":22}}' >"$XDG_CONFIG_HOME/waybar/config"
  echo 'window#waybar{background:#333;}' >"$XDG_CONFIG_HOME/waybar/style.css"
  services_start waybar env HOME="$KESTREL_HOME" GDK_BACKEND=wayland waybar
}
command_line() { tr '\0' ' ' 2>/dev/null <"/proc/${SERVICES_PID[kestrel]}/cmdline"; }
windows() { SWAYSOCK=$(echo "$XDG_RUNTIME_DIR"/sway-ipc.*) swaymsg -t get_tree | grep -c '"app_id": "com.kestrel.app"'; }
working='Active (1 working agent) — Claude Code working'

begin 'a bar that comes late'
services_start_session_bus
compositor_start
start_desktop
bar_start
services_wait_until 40 host_is_there || services_skip 'waybar cannot be run here'
icon_came
relay --agent claude --state working --session-id a
services_wait_until 5 tooltip_has 'Awake (1 active)' || fail "the tooltip is $(item_get ToolTip)"
[ -z "${TRAY_PICTURES:-}" ] || grim "$TRAY_PICTURES/wayland-bar.png"
menu_click 'Disable Kestrel'
services_wait_until 5 status_is 'Safety blocked: Master switch disabled' || fail "after disabling: $(status_line)"
ctl enable >/dev/null

begin 'the popover is a dialog, and a click closes it'
before=$(windows)
click() { busctl --user call "$(item)" /StatusNotifierItem org.kde.StatusNotifierItem Activate ii 0 0; }
click
services_wait_until 5 eval '[ "$(windows)" = $((before + 1)) ]' || fail 'it does not open'
[ -z "${TRAY_PICTURES:-}" ] || { sleep 0.5; grim "$TRAY_PICTURES/wayland-popover.png"; }
click
services_wait_until 5 eval '[ "$(windows)" = "$before" ]' || fail 'it does not close'

begin 'the compositor dies while an agent works'
services_stop sway KILL
goes_on_without() { command_line | grep -q -- --headless && ctl status; }
took=$(milliseconds_until 5 goes_on_without) || fail "it has become: $(command_line)"
echo "   it answers again after $took ms"
same 'it still holds' "$working" "$(status_line)"

finish
