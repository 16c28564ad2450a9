#!/bin/bash
# The units are what the service managers understand, and the system's one gives little away.
. "$(dirname "${BASH_SOURCE[0]}")/services/lib.sh"
command -v systemd-analyze >/dev/null || services_skip 'systemd-analyze is not installed'
packaging=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../packaging" && pwd)
services_enter "$0" "$@"
. "$(dirname "${BASH_SOURCE[0]}")/kestrel.sh"
export XDG_RUNTIME_DIR=$SERVICES_DIR
cd "$SERVICES_DIR" || exit 1

for manager in system user; do
  begin "the $manager's unit"
  mkdir -p "units/$manager"
  unit=units/$manager/kestrel-helper.service
  sed "s#@KESTREL_LIBEXECDIR@#$SERVICES_BIN#" "$packaging/systemd/${manager#system}/kestrel-helper.service.in" >"$unit"
  same "what systemd says" '' "$(systemd-analyze verify --$manager --man=no --recursive-errors=yes "./$unit" 2>&1 || echo failed)"
done
exposure=$(systemd-analyze security --offline=true --threshold=25 --no-pager units/system/kestrel-helper.service) ||
  fail 'the service is exposed'
tail -n 1 <<<"$exposure"
begin 'the property list'
same 'restarted after success' False "$(/usr/bin/python3 -c '
import plistlib, sys
print(plistlib.load(sys.stdin.buffer)["KeepAlive"]["SuccessfulExit"])' <"$packaging/launchd/com.kestrel.helper.plist.in")"
finish
