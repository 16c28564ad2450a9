#!/bin/bash
# kestrelctl run: a hold for as long as a command runs, its exit status, and what becomes of signals.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

running='Active (1 working agent) — Custom Agent working'
run_sessions() { ctl sessions | sed -nE '/ run-[0-9]+/ { s/^ +//; s/ +/ /g; s/ [0-9]+ s ago.*//p }'; }
# in_background COMMAND...: kestrelctl run in the background, until its command runs. Its pid goes to PID.
in_background() {
  rm -f "$SERVICES_DIR/begun"
  kestrel_environment
  "${KESTREL_ENVIRONMENT[@]}" MARK="$SERVICES_DIR/begun" "$SERVICES_BIN/kestrelctl" run -- "$@" >"$SERVICES_DIR/run.out" 2>&1 &
  PID=$!
  services_wait_until 5 test -e "$SERVICES_DIR/begun" || fail 'the command did not begin'
}

begin 'without a Kestrel it says so, and runs'
output=$(ctl run -- sh -c 'echo ran; exit 7' 2>&1)
same 'exit status' 7 $?
same 'output' 'kestrelctl: Kestrel is not running: nothing keeps this machine awake
ran' "$output"

start_kestrel
ctl settings set releaseDelaySeconds 0 >/dev/null

begin 'what it passes on'
while IFS='|' read -r status words; do
  eval "ctl run $words" >/dev/null 2>&1
  same "exit status of 'run $words'" "$status" $?
done <<'ROWS'
7|-- sh -c 'exit 7'
0|sh -c 'test "$1" = --json' sh --json
0|-- sh -c 'test "$1 $2" = "-- x"' sh -- x
127|-- no-such-command-anywhere
126|-- /
2|
2|--
143|-- sh -c 'kill -TERM $$'
137|-- sh -c 'kill -KILL $$'
ROWS
same 'standard input' 'from outside' "$(echo 'from outside' | ctl run -- cat)"
same 'silence' '' "$(ctl run -- true 2>&1)"
same 'the end of its session' 'Custom Agent completed' "$(run_sessions | sort -u)"

begin 'the hold lasts as long as the command'
in_background sh -c 'touch "$MARK"; sleep 3; exit 5'
services_wait_until 1 status_is "$running" || fail "meanwhile: $(status_line)"
wait "$PID"
same 'exit status' 5 $?
services_wait_until 2 status_is 'Sleep enabled — No active agent sessions' || fail "afterwards: $(status_line)"

begin 'signals reach the command'
for signal in TERM HUP USR1; do
  in_background sh -c "trap 'echo got $signal; exit 3' $signal; touch \"\$MARK\"; while :; do sleep 0.1; done"
  services_wait_until 1 status_is "$running" || fail "meanwhile: $(status_line)"
  kill -"$signal" "$PID"
  wait "$PID"
  same "exit status after $signal" 3 $?
  same 'what the command saw' "got $signal" "$(cat "$SERVICES_DIR/run.out")"
  services_wait_until 2 status_is 'Sleep enabled — No active agent sessions' || fail "afterwards: $(status_line)"
done
in_background sh -c 'touch "$MARK"; exec sleep 60'
kill -TERM "$PID"
wait "$PID"
same 'a command that is ended by a signal ends it likewise' 143 $?
services_wait_until 2 status_is 'Sleep enabled — No active agent sessions' || fail "at the end: $(status_line)"

begin 'the status again and again'
kestrel_environment
"${KESTREL_ENVIRONMENT[@]}" "$SERVICES_BIN/kestrelctl" status --watch --json >"$SERVICES_DIR/watch.out" 2>&1 &
PID=$!
services_wait_until 3 grep -q 'Sleep enabled' "$SERVICES_DIR/watch.out" || fail 'nothing is watched'
ctl hold on >/dev/null
services_wait_until 3 grep -q 'Manual hold requested' "$SERVICES_DIR/watch.out" || fail 'the change is not seen'
same 'each on one line' 0 "$(grep -vc '^{.*}$' "$SERVICES_DIR/watch.out")"
stop_kestrel
wait "$PID"
same 'its end with Kestrel' 3 $?

finish
