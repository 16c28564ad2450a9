# What fish completes after kestrelctl.
complete -c kestrelctl -f
complete -c kestrelctl -s h -l help -d 'Print help'
complete -c kestrelctl -n __fish_use_subcommand -l version -d 'Print the version'

set -l first -c kestrelctl -n __fish_use_subcommand
complete $first -a status -d 'What Kestrel does, and why'
complete $first -a pause -d 'Let the machine sleep for a while'
complete $first -a resume -d 'End a pause'
complete $first -a hold -d 'Keep the machine awake without any agent, or end that'
complete $first -a enable -d 'Switch protection on'
complete $first -a disable -d 'Switch protection off'
complete $first -a sessions -d 'The sessions of the agents'
complete $first -a doctor -d 'What works on this machine, and what does not'
complete $first -a why -d 'Who keeps this machine awake'
complete $first -a diagnostics -d 'A report for people who help'
complete $first -a settings -d 'Read and change settings'
complete $first -a usage -d 'What the agents used'
complete $first -a agents -d 'The agents on this machine'
complete $first -a setup -d 'How to let an agent report to Kestrel'
complete $first -a helper -d 'The helper for the closed lid'
complete $first -a run -d 'Run a command and keep the machine awake meanwhile'

set -l reporting status pause resume hold enable disable sessions doctor why diagnostics usage agents setup
complete -c kestrelctl -n "__fish_seen_subcommand_from $reporting list get set" -l json -d 'As JSON'
complete -c kestrelctl -n '__fish_seen_subcommand_from status' -l watch -d 'Again each second'
complete -c kestrelctl -n '__fish_seen_subcommand_from pause' -a '5m 15m 30m 1h 2h'
complete -c kestrelctl -n '__fish_seen_subcommand_from hold' -a 'on off'
complete -c kestrelctl -n '__fish_seen_subcommand_from usage' -a 'today days sessions'
complete -c kestrelctl -n '__fish_seen_subcommand_from usage' -l limit -x -d 'At most so many'
complete -c kestrelctl -n '__fish_seen_subcommand_from setup' \
    -a 'claude codex gemini opencode antigravity cursor windsurf aider'
complete -c kestrelctl -n '__fish_seen_subcommand_from setup' -l classic -d 'For older versions'

set -l settings '__fish_seen_subcommand_from settings; and not __fish_seen_subcommand_from list get set'
complete -c kestrelctl -n $settings -a list -d 'All settings'
complete -c kestrelctl -n $settings -a get -d 'One setting'
complete -c kestrelctl -n $settings -a set -d 'Change one setting'
complete -c kestrelctl -n '__fish_seen_subcommand_from get set' \
    -a 'masterEnabled manualHoldEnabled releaseDelaySeconds batteryFloorPercent onlyOnAC deepLidProtectionEnabled
    preventDisplaySleep notificationsEnabled soundEnabled launchAtLogin hasCompletedOnboarding pauseUntil'
complete -c kestrelctl -n '__fish_seen_subcommand_from set' -a 'true false none'

set -l helper '__fish_seen_subcommand_from helper; and not __fish_seen_subcommand_from status install uninstall'
complete -c kestrelctl -n $helper -a status -d 'Who answers, and what it holds'
complete -c kestrelctl -n $helper -a install -d 'Start it now and always'
complete -c kestrelctl -n $helper -a uninstall -d 'End its hold and remove it'
complete -c kestrelctl -n '__fish_seen_subcommand_from install uninstall' -l user -d 'For this user alone'

complete -c kestrelctl -n '__fish_seen_subcommand_from run' -a '(__fish_complete_subcommand --fcs-skip=2)'
