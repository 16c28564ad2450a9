#!/bin/bash
# A lid through the real login manager and the real UPower.
. "$(dirname "${BASH_SOURCE[0]}")/machine.sh"
machine_enter "$0" "$SERVICES_LOGIN_MANAGER" /usr/libexec/upowerd

start_logind() {
  machine_start logind org.freedesktop.login1 env SYSTEMD_LOG_TARGET=console "$SERVICES_LOGIN_MANAGER"
}

begin 'no service, and nothing that shows a lid'
start_probe
expect 2 'lid - | unknown'

begin 'the login manager sees it closed'
machine lid closed
start_logind
expect 2 'lid login manager | closed'

begin 'the login manager sees an open lid'
machine stop logind KILL
expect 2 'lid - | unknown'
machine lid open
start_logind
expect 2 'lid login manager | open'

begin 'a new start, without a sign of a lid and with one'
services_stop probe
start_probe
sleep 1
expect 2 'lid - | unknown'
services_stop probe
start_probe '' "$MACHINE_ROOT/sys/class/input"
expect 2 'lid login manager | open'

begin 'the lid is moved, of which the login manager tells nobody'
machine move-lid closed
expect 11 'lid login manager | closed'

begin 'UPower alone, which tells'
machine stop logind KILL
expect 2 'lid - | unknown'
start_upower
expect 2 'lid UPower | closed'
machine move-lid open
expect 1 'lid UPower | open'
machine move-lid closed
expect 1 'lid UPower | closed'

begin 'the login manager decides where both answer'
machine lid open
start_logind
expect 2 'lid login manager | open'
machine stop logind KILL
expect 2 'lid UPower | closed'

finish
