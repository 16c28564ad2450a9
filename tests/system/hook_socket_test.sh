#!/bin/bash
# Good, bad and many clients on the sockets of the real program.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

hook=$KESTREL_RUN/kestrel.sock
control=$KESTREL_RUN/kestrel-control.sock
accepted='{"ok":true}'
probe() { "$SERVICES_BIN/socket_probe" "$@"; }
refused() { # WHAT REPLY
  [[ $2 == '{"ok":false,"error":"'*'"}' ]] || fail "$1: no failure reply: '$2'"
}
session() { ctl sessions --json | tr -d '\n' | sed 's/}, *{/}\n{/g' | grep "\"id\": \"$1\""; }
sessions() { ctl sessions --json | grep -c "\"id\": \"$1"; }

start_kestrel
same 'the folder' 700 "$(stat -c %a "$KESTREL_RUN")"
same 'the hook socket' 600 "$(stat -c %a "$hook")"
same 'the control socket' 600 "$(stat -c %a "$control")"

begin 'records'
same 'a record and its line feed' "$(printf '%s\n' "$accepted" | od -c)" \
  "$(probe send "$hook" '{"agent":"codex","state":"idle"}' | od -c)"
services_wait_until 1 session codex-default || fail 'the record was not applied'
reply=$(probe send "$hook" '{}')
refused 'an empty object' "$reply"
has 'the missing key' agent "$reply"
has 'the missing key' state "$(probe send "$hook" '{"agent":"codex"}')"
for garbage in 'garbage' '[1,2]' '{"agent":"codex","state":"idle"' '{"agent":7,"state":"idle"}' $'\xff\xfe' '""' \
  "$(printf '[%.0s' {1..5000})"; do
  refused "$garbage" "$(probe send "$hook" "$garbage")"
done
refused '70,000 bytes' "$(probe fill "$hook" 70000)"

begin 'a record in two parts'
refused 'split' "$(probe parts "$hook" '{"agent":"codex","state":"idle",' '"session_id":"split"}')"
same 'sessions of the split record' 0 "$(sessions split)"

begin 'silent clients, and one that does not wait'
read -r seconds reply <<<"$(probe silent "$hook")"
echo "   closed after $seconds s"
[[ $seconds =~ ^(0\.9|1\.) ]] || fail "a silent client was closed after $seconds s"
same 'a reply to silence' '' "$reply"
probe vanish "$hook" '{"agent":"codex","state":"idle","session_id":"vanished"}'
services_wait_until 1 session vanished || fail 'its record is lost'

begin 'times and numbers that are none'
for time in 1795234567000 1e300 -1e300 1e19 '"now"' null; do
  same "timestamp $time" "$accepted" \
    "$(probe send "$hook" '{"agent":"codex","state":"working","session_id":"time","timestamp":'"$time"'}')"
done
same 'a time far ahead' "$accepted" \
  "$(probe send "$hook" '{"agent":"codex","state":"working","session_id":"ahead","timestamp":1795234567000}')"
services_wait_until 1 session ahead || fail 'it is lost'
has 'it counts as now' "\"lastEventAt\": \"$(date -u +%Y-%m-%dT%H)" "$(session ahead)"
for count in 9223372036854775807 99999999999999999999999 1e308 -1 1.5; do
  same "token count $count" "$accepted" "$(probe send "$hook" '{"agent":"codex","state":"idle","session_id":"tokens",
    "input_tokens":'"$count"',"output_tokens":12,"reasoning_tokens":'"$count"'}')"
done
services_wait_until 1 session tokens || fail 'it is lost'
[[ $(session tokens) != *[0-9][0-9][0-9][0-9][0-9][0-9][0-9]* ]] || fail "an absurd count was taken: $(session tokens)"

begin '5,000 events of 8 clients'
start=${EPOCHREALTIME/./}
same 'acknowledged' 5000 "$(probe burst "$hook" 8 5000)"
echo "   acknowledged in $(((${EPOCHREALTIME/./} - start) / 1000)) ms"
all_there() { [ "$(sessions burst-)" = 5000 ]; }
services_wait_until 10 all_there || fail "sessions: $(sessions burst-)"

begin 'the control socket'
has 'garbage' '"ok":false' "$(probe half "$control" garbage)"
has 'an unknown command' "Unknown command 'x'" "$(probe half "$control" '{"command":"x"}')"
has 'wrong arguments' '"ok":false' "$(probe half "$control" '{"command":"pause","arguments":[7]}')"
has 'too large' 'too large' "$(probe fill "$control" 70000)"
has 'in parts' '"ok":true' "$(probe half "$control" '{"command":' '"status"}')"

kestrel_lives || fail 'it has gone'
stop_kestrel
same 'its end' 0 $?
finish
