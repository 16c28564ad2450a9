#!/bin/bash
# `kestrelctl helper install` and `uninstall` as root, with the service manager played by a script.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"

unit=/etc/systemd/system/kestrel-helper.service
packaged=/usr/local/lib/systemd/system/kestrel-helper.service
executable=/usr/local/libexec/kestrel/kestrel-helper
mount -t tmpfs tmpfs /usr/local || services_skip 'a private /usr/local is refused here'
mount -t tmpfs tmpfs /etc/systemd/system || services_skip 'private units are refused here'
mkdir "$SERVICES_DIR/bin"
cat >"$SERVICES_DIR/bin/systemctl" <<SCRIPT
#!/bin/bash
echo "\$*" >>"$SERVICES_DIR/systemctl.calls"
case \$1 in
  restart)
    [ ! -e "$SERVICES_DIR/broken" ] || { echo "Job for \$2 failed."; exit 1; }
    \$(sed -n 's/^ExecStart=//p' $unit $packaged 2>/dev/null) >>"$SERVICES_DIR/helper.log" 2>&1 &
    ;;
esac
SCRIPT
chmod +x "$SERVICES_DIR/bin/systemctl"
PATH=$SERVICES_DIR/bin:$PATH
calls() { paste -sd';' "$SERVICES_DIR/systemctl.calls"; rm -f "$SERVICES_DIR/systemctl.calls"; }

services_start_system_bus
services_start_login_manager

begin 'installed, started and in use'
ctl helper status >/dev/null && fail 'a helper before it is installed'
said=$(ctl helper install) || fail "install: $said"
has 'what it runs' "  install -D -m 0755 $SERVICES_BIN/kestrel-helper $executable" "$said"
has 'the outcome' 'The helper answers.' "$said"
same 'the service manager' 'daemon-reload;enable kestrel-helper.service;restart kestrel-helper.service' "$(calls)"
same 'root owns it' "root 755 root 644" "$(stat -c '%U %a' "$executable" "$unit" | paste -sd' ')"
systemd-analyze verify --man=no --recursive-errors=yes "$unit" || fail 'the unit'
has 'ready' 'Whole machine: ready' "$(ctl helper status)"
start_kestrel
ctl hold on >/dev/null
services_wait_until 3 eval 'ctl status | grep -q "kestrel-helper, lid: held"' || fail "held: $(ctl status)"
has 'holds' 'Whole machine: holds with the lid closed, for another' "$(ctl helper status)"
stop_kestrel

begin 'removed, and nothing left behind'
said=$(ctl helper uninstall) || fail "uninstall: $said"
same 'the service manager' 'disable --now kestrel-helper.service;daemon-reload' "$(calls)"
same 'what is left' '' "$(find /usr/local /etc/systemd/system /run/kestrel* -not -type d 2>/dev/null)"
same 'no lid inhibitor' '' "$(services_inhibitors Kestrel)"
has 'status' 'not installed, or not running' "$(ctl helper status)"

begin 'what goes wrong is said'
touch "$SERVICES_DIR/broken"
said=$(ctl helper install 2>&1) && fail 'installed although the service did not start'
has 'the reason' 'Job for kestrel-helper.service failed.' "$said"
has 'the outcome' 'the helper is not installed' "$said"
rm -f "$SERVICES_DIR/broken" "$SERVICES_DIR/systemctl.calls"

begin 'a package brought it: its service, and what was copied earlier goes'
mkdir -p "${packaged%/*}"
echo "ExecStart=$SERVICES_BIN/kestrel-helper" >"$packaged"
said=$(ctl helper install) || fail "install: $said"
same 'the service manager' 'daemon-reload;enable kestrel-helper.service;restart kestrel-helper.service' "$(calls)"
has 'ready' 'Whole machine: ready' "$(ctl helper status)"
said=$(ctl helper uninstall) || fail "uninstall: $said"
has 'the outcome' 'its package can be removed' "$said"
same 'the service manager' 'disable --now kestrel-helper.service' "$(calls)"
same 'what is left' "$packaged" "$(find /usr/local /etc/systemd/system /run/kestrel* -not -type d 2>/dev/null)"

begin 'an installation below /usr/local has it in place'
rm "$packaged"
install -D "$SERVICES_BIN/kestrelctl" /usr/local/bin/kestrelctl
install -D "$SERVICES_BIN/kestrel-helper" "$executable"
said=$(in_home /usr/local/bin/kestrelctl helper install) || fail "install: $said"
said=$(in_home /usr/local/bin/kestrelctl helper uninstall) || fail "uninstall: $said"
same 'what is left' "/usr/local/bin/kestrelctl $executable" "$(find /usr/local /etc/systemd/system -type f | sort | paste -sd' ')"

finish
