# A tray, and what a host of it sees of Kestrel. Sourced after services_enter, kestrel.sh and services/display.sh.

TRAY_WATCHER=org.kde.StatusNotifierWatcher
KESTREL_OUTPUT=$SERVICES_DIR/kestrel.out
export XDG_RUNTIME_DIR=$SERVICES_DIR/runtime XDG_CONFIG_HOME=$SERVICES_DIR/config
mkdir -p -m 700 "$XDG_RUNTIME_DIR" "$XDG_CONFIG_HOME"

# start_desktop [VARIABLE=VALUE...]: Kestrel with windows, until it answers.
start_desktop() {
  kestrel_environment
  local name
  for name in DISPLAY WAYLAND_DISPLAY XDG_RUNTIME_DIR; do
    [ -z "${!name:-}" ] || KESTREL_ENVIRONMENT+=("$name=${!name}")
  done
  : >"$KESTREL_OUTPUT"
  services_start kestrel "${KESTREL_ENVIRONMENT[@]}" "$@" sh -c 'exec "$0" >>"$1"' \
    "$SERVICES_BIN/kestrel" "$KESTREL_OUTPUT"
  services_wait_until 10 ctl status || fail 'kestrel does not answer'
}
logged() { grep -c -- "$1" "$SERVICES_DIR/kestrel.log"; }

# A panel whose plugins are a list of windows and the tray.
panel_start() {
  local folder=$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml
  mkdir -p "$folder"
  cat >"$folder/xfce4-panel.xml" <<'XML'
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="true"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=8;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/><value type="int" value="2"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="tasklist"/>
    <property name="plugin-2" type="string" value="systray"><property name="square-icons" type="bool" value="false"/></property>
  </property>
</channel>
XML
  [ -n "${SERVICES_PID[xfconf]:-}" ] || {
    services_start xfconf env HOME="$KESTREL_HOME" "$(echo /usr/lib/*/xfce4/xfconf/xfconfd)"
    services_wait_name --user org.xfce.Xfconf
  }
  services_start panel env HOME="$KESTREL_HOME" GTK_THEME="${PANEL_THEME:-Adwaita:dark}" xfce4-panel --disable-wm-check
}

watcher_get() { busctl --user get-property $TRAY_WATCHER /StatusNotifierWatcher $TRAY_WATCHER "$1"; }
host_is_there() { [ "$(watcher_get IsStatusNotifierHostRegistered)" = 'b true' ]; }
# The bus name of the icon; fails while there is none.
item() { watcher_get RegisteredStatusNotifierItems | grep -oE ':[0-9.]+' | head -n 1 | grep .; }
item_get() { busctl --user get-property "$(item)" /StatusNotifierItem org.kde.StatusNotifierItem "$1"; }
tooltip_has() { item_get ToolTip | grep -qF -- "$1"; }
icon_came() { services_wait_until "${1:-10}" item || fail "no icon${2:+ $2}"; }

menu_call() { busctl --user --json=short -- call "$(item)" /MenuBar com.canonical.dbusmenu "$@"; }
# One line an item, "ID enabled|disabled LABEL"; a separator has no label. As a host does it: about to show, then the layout.
menu() {
  menu_call AboutToShow i 0 >/dev/null
  menu_call GetLayout iias 0 -1 0 | python3 -c '
import json, sys
for item in json.load(sys.stdin)["data"][1][2]:
    number, values = item["data"][0], {key: value["data"] for key, value in item["data"][1].items()}
    print(number, "enabled" if values.get("enabled", True) else "disabled", values.get("label", "").replace("_", ""))'
}
menu_labels() { menu | cut -d ' ' -f 3-; }
menu_click() {
  local id
  id=$(menu | sed -n "s/^\([0-9]*\) enabled $1\$/\1/p")
  [ -n "$id" ] || { fail "the menu has no '$1': $(menu_labels)"; return; }
  menu_call Event isvu "$id" clicked s '' 0 >/dev/null
}

# bus_messages SECONDS: how many messages the icon's connection sends meanwhile.
bus_messages() {
  timeout "$1" busctl --user --match="sender='$(item)'" monitor --json=short 2>/dev/null | grep -c '"type"'
}
