# The real executables in a home of their own, for the scripts beside this file. Sourced after services/lib.sh and
# services_enter; SERVICES_BIN names the folder of the built programs.

KESTREL_HOME=$SERVICES_DIR/home
KESTREL_RUN=$KESTREL_HOME/.local/share/Kestrel/run
KESTREL_SETTINGS=$KESTREL_HOME/.config/com.kestrel.app.json
KESTREL_OUTPUT=$SERVICES_DIR/kestrel.out
mkdir -p "$KESTREL_HOME"
failures=0

# The environment of every program here: nothing of the caller's but what steers sanitizers.
kestrel_environment() {
  KESTREL_ENVIRONMENT=(env -i PATH="$PATH" HOME="$KESTREL_HOME" DBUS_SYSTEM_BUS_ADDRESS="$DBUS_SYSTEM_BUS_ADDRESS")
  local name
  for name in DBUS_SESSION_BUS_ADDRESS ASAN_OPTIONS LSAN_OPTIONS UBSAN_OPTIONS TSAN_OPTIONS; do
    [ -z "${!name:-}" ] || KESTREL_ENVIRONMENT+=("$name=${!name}")
  done
}
in_home() {
  kestrel_environment
  "${KESTREL_ENVIRONMENT[@]}" "$@"
}
ctl() { in_home "$SERVICES_BIN/kestrelctl" "$@"; }
relay() { in_home "$SERVICES_BIN/kestrel-relay" "$@" </dev/null; }

# start_kestrel [VARIABLE=VALUE...]: in the background, until it answers. Standard output goes to KESTREL_OUTPUT.
start_kestrel() {
  launch_kestrel "$@"
  services_wait_until 10 ctl status || fail 'kestrel does not answer'
}
launch_kestrel() {
  : >"$KESTREL_OUTPUT"
  kestrel_environment
  services_start kestrel "${KESTREL_ENVIRONMENT[@]}" "$@" sh -c 'exec "$0" --headless >>"$1"' \
    "$SERVICES_BIN/kestrel" "$KESTREL_OUTPUT"
}
# stop_kestrel [SIGNAL]: its exit status is what this returns.
stop_kestrel() {
  local pid=${SERVICES_PID[kestrel]}
  unset 'SERVICES_PID[kestrel]'
  kill -"${1:-TERM}" "$pid"
  wait "$pid" 2>/dev/null
}
kestrel_lives() { kill -0 "${SERVICES_PID[kestrel]}" 2>/dev/null; }

begin() { echo "-- $*"; }
fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}
# same WHAT EXPECTED ACTUAL
same() { [ "$2" = "$3" ] || fail "$1: expected '$2', got '$3'"; }
# has WHAT PART TEXT
has() { [[ "$3" == *"$2"* ]] || fail "$1: '$2' is not in '$3'"; }
finish() {
  if [ "$failures" != 0 ]; then
    tail -n 40 "$SERVICES_DIR/kestrel.log" "$KESTREL_OUTPUT" 2>/dev/null
    exit 1
  fi
  echo 'all passed'
}

status_line() { ctl status | head -n 1; }
status_is() { [ "$(status_line)" = "$1" ]; }
# json_value KEY: the first member of that name in JSON on standard input, laid out one member to a line.
json_value() { sed -n "s/^ *\"$1\": \"\{0,1\}\([^\",]*\)\"\{0,1\},\{0,1\}$/\1/p" | head -n 1; }
# "hold": the state of the whole hold is the member of the object that is indented by four.
hold_state() { ctl status --json | sed -n 's/^    "state": "\(.*\)"$/\1/p' | head -n 1; }
hold_is() { [ "$(hold_state)" = "$1" ]; }
# milliseconds_until SECONDS COMMAND...: prints how long the command took to succeed.
milliseconds_until() {
  local start=${EPOCHREALTIME/./} status=0
  services_wait_until "$@" || status=1
  echo $(((${EPOCHREALTIME/./} - start) / 1000))
  return $status
}
