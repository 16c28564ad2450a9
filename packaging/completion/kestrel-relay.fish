# What fish completes after kestrel-relay.
complete -c kestrel-relay -f
complete -c kestrel-relay -l agent -x -d 'Who reports' \
    -a 'claude codex gemini opencode antigravity cursor windsurf aider custom'
complete -c kestrel-relay -l state -x -d 'What it does' -a 'auto idle working waiting completed error'
complete -c kestrel-relay -l session-id -x -d 'The session of the agent'
complete -c kestrel-relay -l cwd -x -d 'The directory of the agent' -a '(__fish_complete_directories)'
complete -c kestrel-relay -l model -x -d 'The model in use'
complete -c kestrel-relay -l pid -x -d 'The process of the agent' -a '(__fish_complete_pids)'
complete -c kestrel-relay -l strict -d 'Report failures'
complete -c kestrel-relay -s h -l help -d 'Print help'
complete -c kestrel-relay -s v -l version -d 'Print the version'
