#!/bin/bash
# An installation below a prefix: all of it is there, its programs find each other, also after it was moved.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
command -v cmake >/dev/null || services_skip 'cmake is not installed'
command -v systemd-analyze >/dev/null || services_skip 'systemd-analyze is not installed'
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"
export XDG_RUNTIME_DIR=$SERVICES_DIR
prefix=$SERVICES_DIR/prefix
build=$(dirname "$SERVICES_BIN")

begin 'what is installed'
cmake --install "$build" --component kestrel --prefix "$prefix" >"$SERVICES_DIR/install.log" 2>&1 ||
  fail "$(tail -n 5 "$SERVICES_DIR/install.log")"
same 'programs' 'bin/kestrel bin/kestrel-relay bin/kestrelctl libexec/kestrel/kestrel-chime libexec/kestrel/kestrel-helper' \
  "$(cd "$prefix" && find bin libexec -type f | sort | paste -sd' ')"
same 'manual pages' 'kestrel-helper.8.gz kestrel-relay.1.gz kestrel.1.gz kestrelctl.1.gz' \
  "$(find "$prefix/share/man" -type f -printf '%f\n' | sort | paste -sd' ')"
same 'nothing of Debian alone' '' "$(find "$prefix" -name '*.Debian*' -o -name lintian)"

begin 'its units'
for unit in system/kestrel-helper user/kestrel-helper user/kestrel; do
  file=$prefix/lib/systemd/$unit.service
  same "what systemd says of $unit" '' \
    "$(systemd-analyze verify --"${unit%/*}" --man=no --recursive-errors=yes "$file" 2>&1 || echo failed)"
  grep -q "^ExecStart=\"*$prefix/" "$file" || fail "$unit runs something else"
done

begin 'moved, and run'
mv "$prefix" "$SERVICES_DIR/elsewhere"
SERVICES_BIN=$SERVICES_DIR/elsewhere/bin
start_kestrel
relay --agent claude --state working --strict || fail 'the relay'
services_wait_until 2 status_is 'Active (1 working agent) — Claude Code working' || fail "status: $(status_line)"
has 'the relay that is shown' "\"relayPath\": \"$SERVICES_BIN/kestrel-relay\"" "$(ctl setup claude --json)"
stop_kestrel
# It was to play when protection began.
! grep 'kestrel-chime: ' "$SERVICES_DIR/kestrel.log" || fail 'the chime was not found'
finish
