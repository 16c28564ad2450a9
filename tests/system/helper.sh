# The real helper for the scripts beside this file. Sourced after kestrel.sh. Run by root it has none of root's powers,
# like the service.

HELPER_SOCKET=/run/kestrel-helper.sock
HELPER_STATE=/run/kestrel-helper/state.json
HELPER_POWERLESS=(setpriv --no-new-privs --bounding-set=-all --inh-caps=-all)
"${HELPER_POWERLESS[@]}" true 2>/dev/null || HELPER_POWERLESS=()

ask() { "$SERVICES_BIN/socket_probe" "${2:-send}" "$HELPER_SOCKET" "$1"; }
ask_for() { ask "{\"command\":\"$1\",\"leaseId\":\"${2:-A}\",\"ttlSeconds\":${3:-10}}"; }
status_has() { [[ $(ask '{"command":"status"}') == *"\"$1\":$2"* ]]; }
# start_helper [COMMAND...]: until it answers. stop_helper SIGNAL: its exit status is what this returns.
start_helper() {
  kestrel_environment
  services_start helper "${KESTREL_ENVIRONMENT[@]}" "${HELPER_POWERLESS[@]}" "$@" "$SERVICES_BIN/kestrel-helper"
  services_wait_until 5 status_has isHelperInstalled true || fail 'the helper does not answer'
}
stop_helper() {
  local pid=${SERVICES_PID[helper]}
  unset 'SERVICES_PID[helper]'
  kill -"$1" "$pid" 2>/dev/null
  wait "$pid" 2>/dev/null
}
kinds() { services_inhibitors Kestrel | cut -d'|' -f1 | paste -sd' '; }
kinds_are() { [ "$(kinds)" = "$1" ]; }
# shown WITHIN held|nothing: at the login manager, and in the helper's own words.
shown() {
  local expected='' took
  [ "$2" = nothing ] || expected='handle-lid-switch sleep'
  took=$(milliseconds_until "$1" kinds_are "$expected") || fail "$2 is not shown within $1 s, but '$(kinds)'"
  [ -z "$expected" ] || services_wait_until 1 status_has currentSystemSleepDisabled true || fail 'not in the status'
  echo "   $2 after $took ms"
}
finish_helper() {
  [ "$failures" = 0 ] || cat "$SERVICES_DIR/helper.log"
  finish
}
