#!/bin/bash
# The headless program and its two tools, without any service: from an agent's hook to the status and back.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

working='Active (1 working agent) — Claude Code working'
released='Sleep enabled — No active agent sessions'

begin 'the version and the help, before anything is made'
same version 'Kestrel 0.4.0 (Beta)' "$(in_home "$SERVICES_BIN/kestrel" --headless -h -v)"
same help 'Kestrel 0.4.0 — Smart sleep prevention for coding agents
Usage: Kestrel [options]
Options:
  -v, --version    Print version and exit
  -h, --help       Print help and exit' "$(in_home "$SERVICES_BIN/kestrel" -h)"
same 'files made' '' "$(ls -A "$KESTREL_HOME")"

begin 'no home'
output=$(env -i "$SERVICES_BIN/kestrel" 2>&1)
same status 1 $?
has message 'HOME' "$output"

begin 'from the hook to the status'
start_kestrel
ctl settings set releaseDelaySeconds 3 >/dev/null || fail 'a setting cannot be set'
same 'at first' "$released" "$(status_line)"
start=${EPOCHREALTIME/./}
relay --agent claude --state working
services_wait_until 2 status_is "$working" || fail "the status stays '$(status_line)'"
echo "   shown $(((${EPOCHREALTIME/./} - start) / 1000)) ms after the relay was started"
same 'without a login manager' wanted "$(hold_state)"
has 'the reason' 'no system bus' "$(ctl status)"
relay --agent claude --state idle
services_wait_until 1 status_is 'Active (0 working agents) — Release debounce (3s)' || fail "debounce: $(status_line)"
services_wait_until 2 status_is 'Active (0 working agents) — Release debounce (2s)' || fail "countdown: $(status_line)"
services_wait_until 5 status_is "$released" || fail "release: $(status_line)"
same 'hold' none "$(hold_state)"
same 'the status lines' "$released
$working · wanted: no system bus: No such file or directory
Active (0 working agents) — Release debounce (3s) · wanted: no system bus: No such file or directory
$released" "$(grep -v '^Kestrel\|^To\|^  ' "$KESTREL_OUTPUT")"
has 'the hint' "  $SERVICES_BIN/kestrel-relay --agent claude --state working" "$(cat "$KESTREL_OUTPUT")"

begin 'what can be told to it'
same 'pause' 'Safety blocked: Protection paused' "$(ctl pause 30m)"
has 'the end of the pause' 'Paused:   for another 29 min' "$(ctl status)"
same 'resume' "$released" "$(ctl resume)"
same 'hold on' 'Active (0 working agents) — Manual hold requested' "$(ctl hold on)"
same 'disable' 'Safety blocked: Master switch disabled' "$(ctl disable)"
same 'enable' 'Active (0 working agents) — Manual hold requested' "$(ctl enable)"
same 'hold off' "$released" "$(ctl hold off)"
ctl settings set batteryFloorPercent 99 >/dev/null
same 'a clamped setting' 50 "$(ctl settings get batteryFloorPercent)"
same 'as JSON' '{
  "batteryFloorPercent": 50
}' "$(ctl settings get batteryFloorPercent --json)"
same 'twelve settings' 12 "$(ctl settings list | wc -l)"
ctl settings set onlyOnAC maybe 2>/dev/null
same 'a wrong value' 1 $?
has 'a session' 'Claude Code  idle' "$(ctl sessions)"
for key in version statusDescription decision hold sessions visualState power thermalState thermalSource lidClosed \
  lidSource helper usage settings pausedUntil; do
  has 'status as JSON' "  \"$key\": " "$(ctl status --json | grep '^  "')"
done

begin 'a settings file that somebody edits'
: >"$KESTREL_OUTPUT"
printf '{"masterEnabled": false, "mine": [1]}' >"$KESTREL_SETTINGS"
took=$(milliseconds_until 3 grep -q 'Master switch disabled' "$KESTREL_OUTPUT") || fail 'the change is not seen'
echo "   seen after $took ms"
[ "$took" -lt 1600 ] || fail "seen only after $took ms"
ctl enable >/dev/null
has 'an unknown key' '"mine"' "$(cat "$KESTREL_SETTINGS")"

begin 'a second start'
output=$(in_home timeout 10 "$SERVICES_BIN/kestrel" 2>/dev/null)
same status 0 $?
same 'one line' 'Kestrel is already running.' "$output"
kestrel_lives || fail 'the first one has gone'

begin 'kill -9, and started again'
stop_kestrel KILL
[ -S "$KESTREL_RUN/kestrel.sock" ] || fail 'no stale socket was left to deal with'
ctl status 2>/dev/null
same 'nothing runs' 3 $?
start_kestrel
relay --agent claude --state working
services_wait_until 2 status_is "$working" || fail 'the hook does not work'

for signal in TERM INT HUP; do
  begin "SIG$signal"
  kestrel_lives || start_kestrel
  stop_kestrel $signal
  same status 0 $?
  same 'what is left' kestrel.lock "$(ls "$KESTREL_RUN")"
  start_kestrel
done
stop_kestrel

begin 'no standard input, output and error'
kestrel_environment
services_start kestrel "${KESTREL_ENVIRONMENT[@]}" sh -c 'exec "$0" <&- >&- 2>&-' "$SERVICES_BIN/kestrel"
services_wait_until 5 ctl status || fail 'it does not answer'
relay --agent claude --state working
services_wait_until 2 status_is "$working" || fail 'the hook does not work'
stop_kestrel
same 'its end' 0 $?

begin 'a settings file that is none'
printf '{"masterEnabled": fal' >"$KESTREL_SETTINGS"
start_kestrel
same status "$released" "$(status_line)"
same 'left in place' '{"masterEnabled": fal' "$(cat "$KESTREL_SETTINGS")"
ctl settings set onlyOnAC true >/dev/null
same 'moved aside' '{"masterEnabled": fal' "$(cat "$KESTREL_SETTINGS".unreadable-*Z)"
has 'a new one' '"onlyOnAC": true' "$(cat "$KESTREL_SETTINGS")"
has 'the log' 'Using default settings' "$(cat "$SERVICES_DIR/kestrel.log")"
printf '{"masterEnabled": "no", "releaseDelaySeconds": 7, "batteryFloorPercent": 15.0}' >"$KESTREL_SETTINGS"
same 'a value of a wrong type' true "$(ctl settings get masterEnabled)"
same 'the others' 7 "$(ctl settings get releaseDelaySeconds)"
stop_kestrel

begin 'a path too long for a socket'
long=$SERVICES_DIR/$(printf 'x%.0s' {1..100})
launch_kestrel XDG_DATA_HOME="$long"
services_wait_until 5 grep -q "^$released" "$KESTREL_OUTPUT" || fail 'it does not run'
services_wait_until 2 grep -q 'Cannot serve the control socket .*: the path is too long' "$SERVICES_DIR/kestrel.log" ||
  fail 'nothing in the log'
stop_kestrel
same status 0 $?

finish
