#!/bin/bash
# An agent on another machine, with a network and an sshd of its own, keeps this one awake through a forwarded socket.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
sshd=$(PATH=$PATH:/usr/sbin command -v sshd) || services_skip 'sshd is not installed'
for tool in ssh ssh-keygen ip; do command -v $tool >/dev/null || services_skip "$tool is not installed"; done
[ "$(id -u)" = 0 ] || services_skip 'an sshd needs root'
unshare --net true 2>/dev/null || services_skip 'network namespaces are refused here'
# Two machines, each a network of its own with a cable between them; the other one has a home of its own, too.
[ "${SERVICES_INSIDE:-}${APART:-}" ] || APART=yes exec unshare --net "$BASH" "$0" "$@"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

services_start elsewhere unshare --net --uts sleep infinity
elsewhere() { nsenter --target "${SERVICES_PID[elsewhere]}" --net --uts "$@"; }
services_wait_until 2 eval '[ "$(readlink /proc/${SERVICES_PID[elsewhere]}/ns/net)" != "$(readlink /proc/self/ns/net)" ]'
ip link add kestrel-here type veth peer name kestrel-there netns "${SERVICES_PID[elsewhere]}" ||
  services_skip 'virtual network devices are refused here'
ip addr add 192.0.2.1/30 dev kestrel-here && ip link set kestrel-here up
elsewhere ip addr add 192.0.2.2/30 dev kestrel-there && elsewhere ip link set kestrel-there up

there=$SERVICES_DIR/there
mkdir -p /run/sshd "$SERVICES_DIR/ssh"
mkdir -p "$there/.local/share/Kestrel/run"
for key in host user; do ssh-keygen -q -t ed25519 -N '' -f "$SERVICES_DIR/ssh/$key"; done
cp "$SERVICES_DIR/ssh/user.pub" "$SERVICES_DIR/ssh/authorized_keys"
cat >"$SERVICES_DIR/ssh/sshd_config" <<CONFIG
HostKey $SERVICES_DIR/ssh/host
AuthorizedKeysFile $SERVICES_DIR/ssh/authorized_keys
StrictModes no
PermitRootLogin prohibit-password
StreamLocalBindUnlink yes
UsePAM no
CONFIG
services_start sshd nsenter --target "${SERVICES_PID[elsewhere]}" --net --uts "$sshd" -D -e -f "$SERVICES_DIR/ssh/sshd_config"
remote_socket=$there/.local/share/Kestrel/run/kestrel.sock
secure_shell() { # ARGUMENT...
  ssh -F none -i "$SERVICES_DIR/ssh/user" -o UserKnownHostsFile="$SERVICES_DIR/ssh/known" -o StrictHostKeyChecking=no \
    -o LogLevel=ERROR -o BatchMode=yes "$@"
}
connect() {
  services_start tunnel ssh -F none -i "$SERVICES_DIR/ssh/user" -o UserKnownHostsFile="$SERVICES_DIR/ssh/known" \
    -o StrictHostKeyChecking=no -o BatchMode=yes -o ExitOnForwardFailure=yes -N \
    -R "$remote_socket:$KESTREL_RUN/kestrel.sock" 192.0.2.2
  services_wait_until 10 tunnel_works || fail "no tunnel: $(cat "$SERVICES_DIR/tunnel.log" "$SERVICES_DIR/sshd.log")"
}
remote() { secure_shell 192.0.2.2 "env HOME=$there $*"; }
tunnel_works() { remote "$SERVICES_BIN/kestrel-relay" --agent codex --state idle --session-id probe --strict; }
services_wait_until 5 secure_shell 192.0.2.2 true || fail "sshd: $(cat "$SERVICES_DIR/sshd.log")"

services_start_system_bus
services_start_login_manager
start_kestrel
ctl settings set releaseDelaySeconds 0 >/dev/null
begin 'without a tunnel'
remote "$SERVICES_BIN/kestrel-relay" --agent claude --state working --strict 2>/dev/null
same 'the relay there' 1 $?

begin 'through a forwarded socket'
connect
same 'for its owner alone' 600 "$(stat -c %a "$remote_socket")"
took=$(milliseconds_until 5 remote "$SERVICES_BIN/kestrel-relay" --agent claude --state working --session-id far --cwd /home/u/far --strict)
status_is 'Active (1 working agent) — Claude Code working' || fail "status: $(status_line)"
has 'the session' 'far                       /home/u/far' "$(ctl sessions)"
services_wait_until 2 hold_is inForce || fail "this machine is not held: $(hold_state)"
has 'what holds it' 'idle|Kestrel|Kestrel: Claude Code working|block|' "$(services_inhibitors Kestrel)"
echo "   after $took ms, the connection included"

begin 'a command there'
same 'exit status' 7 "$(remote "$SERVICES_BIN/kestrelctl" run -- sh -c "'exit 7'" >/dev/null 2>&1; echo $?)"
has 'its session' 'Custom Agent completed' "$(ctl sessions)"

begin 'the tunnel breaks and is made again'
services_stop tunnel KILL
remote "$SERVICES_BIN/kestrel-relay" --agent claude --state idle --session-id far --strict 2>/dev/null
same 'the relay there' 1 $?
status_is 'Active (1 working agent) — Claude Code working' || fail "status: $(status_line)"
connect
remote "$SERVICES_BIN/kestrel-relay" --agent claude --state completed --session-id far --strict || fail 'the relay there'
services_wait_until 2 status_is 'Sleep enabled — No active agent sessions' || fail "status: $(status_line)"
services_wait_until 2 hold_is none || fail "this machine is still held: $(hold_state)"
same 'what holds it' '' "$(services_inhibitors Kestrel)"

begin 'several connections, set up as the page tells'
services_stop tunnel
{
  sed -n '/^   Host server$/,/```/{ /```/d; p }' "$SERVICES_HOME/../../../docs/remote-agents.md" |
    sed "s#RemoteForward .*#RemoteForward $remote_socket $KESTREL_RUN/kestrel.sock#; s#~/.ssh/#$SERVICES_DIR/ssh/#"
  printf '%s\n' 'HostName 192.0.2.2' "IdentityFile $SERVICES_DIR/ssh/user" "UserKnownHostsFile $SERVICES_DIR/ssh/known"
} >"$SERVICES_DIR/ssh/config"
for connection in first second; do
  ssh -F "$SERVICES_DIR/ssh/config" server env "HOME=$there" "$SERVICES_BIN/kestrel-relay" --agent claude --state working \
    --session-id $connection --strict </dev/null || fail "the relay there, over the $connection one"
done
HOME=$there elsewhere "$SERVICES_BIN/kestrel-relay" --agent codex --state working --session-id third --strict </dev/null ||
  fail 'the relay there, after the second one has ended'
has 'its session' 'Codex CLI    working' "$(ctl sessions)"
stop_kestrel
finish
