#!/bin/bash
# Another user of the machine is refused on both sockets, also when somebody opened their path to everyone.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"
nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups)
"${nobody[@]}" true 2>/dev/null || services_skip 'becoming another user needs root'
cp "$SERVICES_BIN/socket_probe" "$SERVICES_DIR/probe" # Where the other user can reach it.
as_nobody() { "${nobody[@]}" "$SERVICES_DIR/probe" "$@"; }

event='{"agent":"codex","state":"idle","session_id":"intruder"}'
question='{"command":"status"}'
start_kestrel

begin 'as Kestrel made them'
as_nobody send "$KESTREL_RUN/kestrel.sock" "$event"
same 'connecting to the hook socket' 3 $?
as_nobody half "$KESTREL_RUN/kestrel-control.sock" "$question"
same 'connecting to the control socket' 3 $?

begin 'opened to everyone by hand'
folder=$KESTREL_RUN
while [ "$folder" != "$SERVICES_DIR" ]; do
  chmod 0777 "$folder"
  folder=$(dirname "$folder")
done
chmod 0666 "$KESTREL_RUN"/*.sock
for mode in send half; do
  output=$(as_nobody $mode "$KESTREL_RUN/kestrel.sock" "$event")
  same 'the hook connection' 0 $?
  same 'the hook reply' '' "$output"
done
output=$(as_nobody half "$KESTREL_RUN/kestrel-control.sock" "$question")
same 'the control connection' 0 $?
same 'the control reply' '' "$output"

begin 'what remains'
same 'an own event' '{"ok":true}' "$("$SERVICES_DIR/probe" send "$KESTREL_RUN/kestrel.sock" \
  '{"agent":"codex","state":"idle","session_id":"own"}')"
own_is_there() { [[ $(ctl sessions) == *own* ]]; }
services_wait_until 1 own_is_there || fail 'the own event is lost'
[[ $(ctl sessions --json) != *intruder* ]] || fail 'the event of another user was applied'
has 'the log' 'Refused a connection of user 65534' "$(cat "$SERVICES_DIR/kestrel.log")"
stop_kestrel
finish
