# Real services in a world of their own, for the scripts that test with them. To be sourced by bash:
#
#   . "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
#   services_enter "$0" "$@"       # goes on in private namespaces, or exits 77 (skipped) with the reason
#   services_start_system_bus; services_start_login_manager
#
# In there /run and the process list are private and everything ends with the script. SERVICES_BIN names the
# folder of the built programs. Logs stand in $SERVICES_DIR.

SERVICES_HOME=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
SERVICES_DIR=/run/services
SERVICES_LOGIN_MANAGER=${SERVICES_LOGIN_MANAGER:-/lib/systemd/systemd-logind}
declare -A SERVICES_PID=()

services_skip() { echo "skipped: $*"; exit 77; }

# services_enter SCRIPT ARGUMENT...: starts the script again, inside, where this returns.
services_enter() {
  if [ "${SERVICES_INSIDE:-}" = yes ]; then
    mount -t tmpfs -o mode=755 tmpfs /run || services_skip "a private /run is refused here"
    mkdir -p "$SERVICES_DIR" /run/systemd /run/udev
    unset DBUS_SESSION_BUS_ADDRESS XDG_RUNTIME_DIR
    export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$SERVICES_DIR/system
    trap services_stop_all EXIT
    return
  fi
  local tool
  for tool in unshare dbus-daemon busctl "$SERVICES_LOGIN_MANAGER"; do
    command -v "$tool" >/dev/null || services_skip "$tool is not installed"
  done
  local -a how=(unshare --mount --pid --fork --mount-proc --kill-child)
  [ "$(id -u)" = 0 ] || how+=(--user --map-root-user)
  "${how[@]}" true 2>/dev/null || services_skip "private namespaces are refused here (${how[*]})"
  SERVICES_INSIDE=yes exec "${how[@]}" "$BASH" "$@"
}

# services_start NAME COMMAND...: in the background, output to $SERVICES_DIR/NAME.log.
services_start() {
  local name=$1
  shift
  "$@" >>"$SERVICES_DIR/$name.log" 2>&1 &
  SERVICES_PID[$name]=$!
}

# services_stop NAME [SIGNAL]: ends what services_start or services_start_talking began, and waits for it.
services_stop() {
  local pid=${SERVICES_PID[$1]:-}
  [ -n "$pid" ] || return 0
  unset "SERVICES_PID[$1]"
  kill -"${2:-TERM}" "$pid" 2>/dev/null
  wait "$pid" 2>/dev/null
  return 0
}

services_stop_all() {
  local name
  for name in "${!SERVICES_PID[@]}"; do services_stop "$name" KILL; done
}

# services_start_talking NAME COMMAND...: as services_start, and services_tell NAME writes to its input.
services_start_talking() {
  local name=$1
  shift
  rm -f "$SERVICES_DIR/$name.in"
  mkfifo "$SERVICES_DIR/$name.in"
  "$@" >>"$SERVICES_DIR/$name.log" 2>&1 0<>"$SERVICES_DIR/$name.in" &
  SERVICES_PID[$name]=$!
}
# services_tell NAME TEXT: all lines of it arrive in one piece.
services_tell() {
  local name=$1
  shift
  cat <<<"$*" >"$SERVICES_DIR/$name.in"
}

# services_wait_until SECONDS COMMAND...: until the command succeeds; fails when the time is over.
services_wait_until() {
  local deadline=$((${EPOCHREALTIME/./} + $1 * 1000000))
  shift
  until "$@" >/dev/null 2>&1; do
    [ "${EPOCHREALTIME/./}" -lt "$deadline" ] || return 1
    sleep 0.02
  done
}

# services_wait_name --system|--user NAME
services_name_is_owned() {
  [ "$(busctl "$1" call org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus NameHasOwner s "$2")" = 'b true' ]
}
services_wait_name() {
  services_wait_until 10 services_name_is_owned "$1" "$2" || {
    echo "$2 did not appear on the ${1#--} bus" >&2
    return 1
  }
}

services_start_bus() {
  local socket=$SERVICES_DIR/$1
  sed -e "s#@TYPE@#$1#" -e "s#@SOCKET@#$socket#" "$SERVICES_HOME/bus.conf.in" >"$socket.conf"
  rm -f "$socket"
  services_start "$1-bus" dbus-daemon --nofork --nopidfile --nosyslog --config-file="$socket.conf"
  services_wait_until 5 test -S "$socket"
}
services_start_system_bus() { services_start_bus system; }
services_start_session_bus() {
  services_start_bus session
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$SERVICES_DIR/session
}

services_start_login_manager() {
  services_start logind env SYSTEMD_LOG_TARGET=console "$SERVICES_LOGIN_MANAGER"
  services_wait_name --system org.freedesktop.login1
}
services_kill_login_manager() { services_stop logind KILL; }

# services_restart_login_manager kept|removed: killed and started again, its inhibitor records kept or removed.
services_restart_login_manager() {
  services_kill_login_manager
  [ "$1" = kept ] || rm -rf /run/systemd/inhibit
  services_start_login_manager
}

# services_inhibitors [WHO]: one line each, "WHAT|WHO|WHY|MODE|UID|PID", sorted.
services_inhibitors() {
  busctl --system call org.freedesktop.login1 /org/freedesktop/login1 org.freedesktop.login1.Manager \
    ListInhibitors | sed 's/^a(ssssuu) [0-9]* *//' | xargs -r -n 6 printf '%s|%s|%s|%s|%s|%s\n' |
    grep "^[^|]*|${1:-}" | sort
}

# services_start_desktop BUS_NAME...: a stand-in that owns these names; `services_tell desktop COMMAND` instructs it.
services_start_desktop() {
  services_start_talking desktop "$SERVICES_BIN/desktop_standin" "$@"
  local name
  for name in "$@"; do services_wait_name --user "$name" || return 1; done
}
