# A virtual X display, and the probe of the voices in a home of its own. Sourced after services_enter and kestrel.sh.

KESTREL_OUTPUT=$SERVICES_DIR/probe.log # What a failed test shows.

display_start() {
  services_start xvfb sh -c 'exec Xvfb -displayfd 3 -nolisten tcp -noreset 3>"$0"' "$SERVICES_DIR/display"
  services_wait_until 10 test -s "$SERVICES_DIR/display" || services_skip 'Xvfb cannot be run here'
  export DISPLAY=":$(cat "$SERVICES_DIR/display")"
}

# probe_start [NAME]
probe_start() {
  : >"$SERVICES_DIR/${1:-probe}.log"
  services_start_talking "${1:-probe}" env -u WAYLAND_DISPLAY -u XDG_CONFIG_HOME -u XDG_DATA_HOME HOME="$KESTREL_HOME" \
    "$SERVICES_BIN/voices_probe"
}
# said TEXT [NAME]: how many lines of the probe hold it.
said() { grep -c "$1" "$SERVICES_DIR/${2:-probe}.log"; }
has_obeyed() { [ "$(said '^done$' "$1")" -gt "$2" ]; }
# tell NAME COMMAND: until it has been obeyed.
tell() {
  local before
  before=$(said '^done$' "$1")
  services_tell "$@"
  services_wait_until 5 has_obeyed "$1" "$before" || fail "the $1 does not obey: $2"
}
probe() { tell probe "$*"; }
