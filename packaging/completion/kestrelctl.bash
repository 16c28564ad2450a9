# What bash completes after kestrelctl.
_kestrelctl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local commands='status pause resume hold enable disable sessions doctor why diagnostics settings usage agents setup
    helper run'
  local agents='claude codex gemini opencode antigravity cursor windsurf aider'
  local keys='masterEnabled manualHoldEnabled releaseDelaySeconds batteryFloorPercent onlyOnAC
    deepLidProtectionEnabled preventDisplaySleep notificationsEnabled soundEnabled launchAtLogin
    hasCompletedOnboarding pauseUntil'
  local words options='--json --help'
  if [ "$COMP_CWORD" = 1 ]; then
    words="$commands --help --version"
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    return
  fi

  case ${COMP_WORDS[1]} in
    status) words="--watch $options" ;;
    pause) words="5m 15m 30m 1h 2h $options" ;;
    hold) words="on off $options" ;;
    usage)
      words="today days sessions --limit $options"
      [ "$previous" != --limit ] || words=
      ;;
    setup) words="$agents --classic $options" ;;
    settings)
      case $COMP_CWORD:${COMP_WORDS[2]} in
        2:*) words='list get set --help' ;;
        3:get | 3:set) words="$keys $options" ;;
        4:set)
          case $previous in
            *Seconds | *Percent) words= ;;
            pauseUntil) words=none ;;
            *) words='true false' ;;
          esac
          ;;
        *) words=$options ;;
      esac
      ;;
    helper)
      case $COMP_CWORD:${COMP_WORDS[2]} in
        2:*) words='status install uninstall --help' ;;
        *:status) words=$options ;;
        *) words='--user --help' ;;
      esac
      ;;
    run)
      local first=2
      [ "${COMP_WORDS[2]}" != -- ] || [ "$COMP_CWORD" = 2 ] || first=3
      if [ "$COMP_CWORD" = "$first" ]; then
        mapfile -t COMPREPLY < <(compgen -c -W '-- --help' -- "$current")
      else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
      fi
      return
      ;;
    *) words=$options ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _kestrelctl kestrelctl
