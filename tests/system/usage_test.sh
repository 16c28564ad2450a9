#!/bin/bash
# The account of usage: agents write their records while the real Kestrel runs.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

transcript=$KESTREL_HOME/.claude/projects/-home-u-p/s1.jsonl
rollout=$KESTREL_HOME/.codex/sessions/2026/11/21/rollout-1.jsonl
database=$KESTREL_HOME/.local/share/opencode/opencode.db
mkdir -p "$(dirname "$transcript")" "$(dirname "$rollout")" "$(dirname "$database")"
now() { date -u +%Y-%m-%dT%H:%M:%S.000Z; }
# claude LINE MESSAGE OUTPUT: one line of a message, with the count of output tokens so far.
claude() {
  printf '{"type":"assistant","uuid":"u%s","sessionId":"s1","requestId":"r%s","timestamp":"%s","message":{"id":"m%s",' \
    "$1" "$2" "$(now)" "$2"
  printf '"model":"claude-opus-5","usage":{"input_tokens":100,"output_tokens":%s}}}\n' "$3"
}
codex() { # ORDINAL TOTAL LAST
  printf '{"timestamp":"%s","ordinal":%s,"type":"event_msg","payload":{"type":"token_count","info":{' "$(now)" "$1"
  printf '"total_token_usage":{"input_tokens":%s,"output_tokens":0,"total_tokens":%s},' "$2" "$2"
  printf '"last_token_usage":{"input_tokens":%s,"output_tokens":0,"total_tokens":%s},"model_context_window":258400},' "$3" "$3"
  printf '"rate_limits":{"primary":{"used_percent":92.0,"window_minutes":300,"resets_at":%s}}}}\n' $((EPOCHSECONDS + 3600))
}
opencode() { # SQL
  /usr/bin/python3 -c 'import sqlite3, sys
db = sqlite3.connect(sys.argv[1]); db.execute("pragma journal_mode=wal"); db.executescript(sys.argv[2]); db.commit()' \
    "$database" "$1"
}
tokens() { ctl usage --json | sed -n 's/^  "totalTokens": \([0-9]*\),*$/\1/p'; }
tokens_are() { [ "$(tokens)" = "$1" ]; }
# follows TOKENS: today's summary, within 4 seconds.
follows() {
  local took
  took=$(milliseconds_until 4 tokens_are "$1") || fail "within 4 s not $1 tokens, but $(tokens)"
  echo "   $1 tokens after $took ms"
}

start_kestrel
services_wait_until 5 tokens_are 0 || fail 'no summary'
begin 'Claude Code writes one message in two lines, and another'
claude 1 1 20 >>"$transcript"
follows 120
claude 2 1 50 >>"$transcript"
claude 3 2 50 >>"$transcript"
follows 300
begin 'Codex writes a turn, and repeats it'
codex 1 1000 1000 >>"$rollout"
codex 2 1000 1000 >>"$rollout"
follows 1300
has 'the report' '8% quota left · Critically Low' "$(ctl usage)"
has 'the alert' 'Account quota is critically low (8% remaining)' "$(ctl usage)"
begin 'OpenCode inserts a row, and completes it'
opencode "create table message(id text, session_id text, time_created integer, time_updated integer, data text);
  insert into message values('m1','s2',${EPOCHSECONDS}000,0,'{\"modelID\":\"x\",\"tokens\":{\"input\":0,\"output\":0,\"reasoning\":0,\"cache\":{\"read\":0,\"write\":0}}}');"
sleep 3.2
follows 1300
opencode "update message set data='{\"modelID\":\"x\",\"tokens\":{\"input\":5,\"output\":2,\"reasoning\":0,\"total\":7,\"cache\":{\"read\":0,\"write\":0}},\"time\":{\"completed\":1}}';"
follows 1307
begin 'a hook reports tokens'
in_home "$SERVICES_BIN/socket_probe" send "$KESTREL_RUN/kestrel.sock" \
  '{"agent":"aider","state":"idle","session_id":"a","turn_id":"t","input_tokens":10,"output_tokens":3}' >/dev/null
follows 1320

begin 'nothing is counted twice after a restart, also not by a fork that copies the lines'
stop_kestrel KILL
same 'from the file' 1320 "$(tokens)"
cp "$transcript" "${transcript%s1.jsonl}s9.jsonl"
start_kestrel
sleep 3.5
follows 1320
codex 3 1500 500 >>"$rollout"
follows 1820
same 'sessions' '"a" "rollout-1" "s1" "s2"' \
  "$(ctl usage sessions --json | sed -n 's/^ *"id": \(".*"\),*$/\1/p' | sort | paste -sd' ')"
stop_kestrel
same 'its end' 0 $?
same 'from the file' 1820 "$(tokens)"
finish
