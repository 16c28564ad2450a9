#!/bin/bash
# The low-power mode through the real power-profiles-daemon.
. "$(dirname "${BASH_SOURCE[0]}")/machine.sh"
PROFILES=/usr/libexec/power-profiles-daemon
POLKIT=/usr/lib/polkit-1/polkitd
machine_enter "$0" $PROFILES $POLKIT

old=(net.hadess.PowerProfiles /net/hadess/PowerProfiles net.hadess.PowerProfiles ActiveProfile)
use() { busctl --system set-property "${old[@]}" s "$1" || fail "the profile '$1' is refused"; }
start_profiles() { machine_start profiles net.hadess.PowerProfiles $PROFILES; }
power='power /sys/class/power_supply | Battery Power | - | 80 | 240 |'

# Setting a profile asks for authorisation, by another user over the same bus.
chmod 755 "$SERVICES_DIR"
chmod 666 "$SERVICES_DIR/system"
services_start polkit $POLKIT --no-debug
services_wait_name --system org.freedesktop.PolicyKit1 || services_skip 'polkitd cannot be run here'

begin 'no service'
start_probe
expect 2 "$power -"

begin 'profiles are changed'
start_profiles
use power-saver
expect 2 "$power saving"
use performance
expect 2 "$power -"
use power-saver
expect 2 "$power saving"

begin 'the service is killed and started again'
machine stop profiles KILL
expect 2 "$power -"
start_profiles
use power-saver
expect 2 "$power saving"

finish
