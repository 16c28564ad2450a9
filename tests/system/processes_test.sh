#!/bin/bash
# Agents that report nothing themselves: real processes with their command lines, seen by the real program.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

# run_as COMMANDLINE: a process that shows as exactly that and waits. Its pid goes to PID.
run_as() {
  (exec -a "$1" cat <>"$SERVICES_DIR/never") &
  PID=$!
}
# session_of PID: "Claude Code working", or nothing.
session_of() { ctl sessions | sed -nE "/ proc-[a-z]+-$1( |$)/ { s/ +/ /g; s/ [0-9]+ .* ago .*//p }"; }
session_is() { [ "$(session_of "$1")" = "$2" ]; }
# seen COMMANDLINE SESSION: starts it, and says when its session showed, and vanished after its end.
seen() {
  local came went
  run_as "$1"
  came=$(milliseconds_until 4 session_is "$PID" "$2") || fail "'$1' shows as '$(session_of "$PID")', not '$2'"
  kill "$PID"
  went=$(milliseconds_until 4 session_is "$PID" '') || fail "'$1' is still there"
  echo "   '$1': $2 after $came ms, gone after $went ms"
}
unseen() {
  run_as "$1"
  sleep 1.5
  session_is "$PID" '' || fail "'$1' shows as '$(session_of "$PID")'"
  kill "$PID"
}

mkfifo "$SERVICES_DIR/never"
start_kestrel

begin 'command lines that are agents'
seen /opt/homebrew/bin/codex 'Codex CLI working'
seen 'node /x/codex --resume' 'Codex CLI idle'
seen 'opencode run fix' 'OpenCode working'
seen 'opencode serve --port 4096' 'OpenCode idle'
seen /usr/local/bin/claude 'Claude Code working'
seen claude 'Claude Code idle'
seen 'node --x /usr/bin/gemini' 'Gemini CLI working'

begin 'command lines that are none'
unseen '/Applications/ChatGPT.app/Contents/Resources/codex app-server'
unseen 'claude --version'
unseen 'gemini --antigravity-mode'

begin 'a hook of a family without hooks of its own outlives the scans'
relay --agent custom --state working
sleep 2.5
same 'status' 'Active (1 working agent) — Custom Agent working' "$(ctl status | head -n 1)"
relay --agent custom --state completed

begin 'a bare claude works while there is evidence'
run_as claude
services_wait_until 4 session_is "$PID" 'Claude Code idle' || fail 'it is not seen as idle'
mkdir -p "$KESTREL_HOME/.claude/projects/-home-u-p"
echo '{}' >"$KESTREL_HOME/.claude/projects/-home-u-p/s.jsonl"
services_wait_until 8 session_is "$PID" 'Claude Code working' || fail 'a fresh transcript is no evidence'
touch -d '3 minutes ago' "$KESTREL_HOME/.claude/projects/-home-u-p/s.jsonl"
services_wait_until 8 session_is "$PID" 'Claude Code idle' || fail 'an old transcript is still evidence'
kill "$PID"
finish
