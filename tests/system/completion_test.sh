#!/bin/bash
# Completions, manual pages and the agents' pages know what the programs know: commands, options, settings, set-ups.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
source=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

# Its words, options included, level by level: "helper install --user".
known_words() { # WORD...: of the command with these words
  local help word
  help=$(ctl "$@" --help)
  grep -oE '^ +(-h,)?--[a-z]+' <<<"$help" | grep -oE -- '--[a-z]+' | sed "s#^#$* #"
  sed -n 's/^  .*TEXT:{\(.*\)}.*/\1/p' <<<"$help" | tr ',' '\n' | sed "s#^#$* #"
  for word in $(sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p' <<<"$help"); do
    echo "$* $word"
    known_words "$@" "$word"
  done
}
# bash_offers WORD...: what bash offers for the word after these.
bash_offers() {
  local function=_${1//-/_}
  COMP_WORDS=("$@" '') COMP_CWORD=$# COMPREPLY=()
  "$function"
  printf '%s\n' "${COMPREPLY[@]}"
}
. "$source/packaging/completion/kestrelctl.bash"
. "$source/packaging/completion/kestrel-relay.bash"
# expect_everywhere PROGRAM WORD [PAGE]: in the files of the other shells and on the manual page.
expect_everywhere() {
  local name=${2#--} zsh=$source/packaging/completion/_kestrelctl
  grep -qwF -- "$name" "$zsh" || fail "zsh does not know $1 $2"
  grep -qwF -- "$name" "$source/packaging/completion/$1.fish" || fail "fish does not know $1 $2"
  sed 's/ -\([a-z]\)/ --\1/g' "$source/packaging/man/${3:-$1}.1" | grep -qwF -- "$2" || fail "the manual does not know $1 $2"
}

begin 'every command and option of kestrelctl'
known_words | sed 's/^ //' | sort -u >"$SERVICES_DIR/words"
[ "$(wc -l <"$SERVICES_DIR/words")" -gt 70 ] || fail "the help was not understood: $(cat "$SERVICES_DIR/words")"
while read -ra words; do
  last=${words[-1]}
  [ "${words[0]}" != run ] || [ "$last" = run ] || continue # There, the command's own words are completed.
  bash_offers kestrelctl "${words[@]:0:${#words[@]}-1}" | grep -qxF -- "$last" || fail "bash does not offer '${words[*]}'"
  expect_everywhere kestrelctl "$last"
done <"$SERVICES_DIR/words"
while read -r word; do
  case $word in
    --*) ;;
    *) grep -qE "^($word| .*)$" "$SERVICES_DIR/words" ;;
  esac || fail "bash offers '$word', which is no command"
done < <(bash_offers kestrelctl)

begin 'every option and name of kestrel-relay'
for option in $(relay --help | grep -oE -- '--[a-z-]+' | sort -u); do
  bash_offers kestrel-relay | grep -qxF -- "$option" || fail "bash does not offer $option"
  expect_everywhere kestrel-relay "$option"
done
for name in $(relay --help | sed -n '/--agent AGENT  /,/--state/p; /--state STATE  /,/event$/p' | tr -c 'a-z\n' ' ' |
  grep -owE 'claude|codex|gemini|opencode|antigravity|cursor|windsurf|aider|custom|idle|working|waiting|completed|error|auto'); do
  { bash_offers kestrel-relay --agent; bash_offers kestrel-relay --state; } | grep -qxF "$name" || fail "bash does not offer $name"
  expect_everywhere kestrel-relay "$name"
done

begin 'every setting'
start_kestrel
for key in $(ctl settings list | awk '{print $1}'); do
  bash_offers kestrelctl settings set | grep -qxF "$key" || fail "bash does not offer $key"
  expect_everywhere kestrelctl "$key" kestrel
done
stop_kestrel

begin "the agents' pages show the set-ups"
for agent in claude codex gemini opencode; do
  ctl setup $agent --json | /usr/bin/python3 -c '
import json, sys
page = open(sys.argv[1]).read()
report = json.load(sys.stdin)
for setup in report["setups"]:
    for part in ("what", "how"):
        if setup[part].replace(report["relayPath"], "/usr/bin/kestrel-relay") not in page:
            sys.exit(part + " for " + setup["versions"])' "$source/docs/agents/$agent.md" || fail "$agent.md is old"
done
finish
