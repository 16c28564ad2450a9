# What bash completes after kestrel-relay.
_kestrel_relay() {
  local current=${COMP_WORDS[COMP_CWORD]} words
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --agent) words='claude codex gemini opencode antigravity cursor windsurf aider custom' ;;
    --state) words='auto idle working waiting completed error' ;;
    --cwd)
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return
      ;;
    --session-id | --model | --pid) words= ;;
    *) words='--agent --state --session-id --cwd --model --pid --strict --help --version' ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _kestrel_relay kestrel-relay
