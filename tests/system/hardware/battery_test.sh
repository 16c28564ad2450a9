#!/bin/bash
# A battery through the real UPower, and through the kernel's files where UPower is not running.
. "$(dirname "${BASH_SOURCE[0]}")/machine.sh"
machine_enter "$0" /usr/libexec/upowerd

files='power /sys/class/power_supply |'

begin 'without UPower'
start_probe
expect 2 "$files Battery Power | - | 80 | 240 | -"

begin 'UPower comes'
machine set BAT0 capacity 79
start_upower
expect 2 'power UPower | Battery Power | - | 79 | 240 | -'

begin 'it discharges'
machine_set BAT0 energy_now 9600000 capacity 16
expect 2 'power UPower | Battery Power | - | 16 | 47 | -'
machine_set BAT0 energy_now 9000000 capacity 15
expect 2 'power UPower | Battery Power | - | 15 | 45 | -'

begin 'the adapter is plugged in, the battery charges and is full'
machine_set AC0 online 1
machine_set BAT0 status Charging
expect 2 'power UPower | AC Power | charging | 15 | - | -'
machine_set BAT0 status Full energy_now 60000000 capacity 100
expect 2 'power UPower | AC Power | - | 100 | - | -'

begin 'one change is told once, however many signals it takes'
: >"$SERVICES_DIR/probe.log"
machine set AC0 online 0
machine set BAT0 status Discharging
machine set BAT0 energy_now 2400000
machine set BAT0 capacity 4
machine change AC0
machine change BAT0
expect 2 'power UPower | Battery Power | - | 4 | 11 | -'
[ "$(grep -c '^power' "$SERVICES_DIR/probe.log")" = 1 ] || fail 'it was told in parts'

begin 'the battery is removed, which reads 0 %, and comes back'
machine remove BAT0
expect 2 'power UPower | AC Power | - | - | - | -'
machine add-battery
expect 2 'power UPower | Battery Power | - | 80 | 240 | -'

begin 'UPower is killed and started again'
machine_set BAT0 capacity 55
expect 2 'power UPower | Battery Power | - | 55 | 240 | -'
machine set BAT0 capacity 54
machine stop upower KILL
expect 2 "$files Battery Power | - | 54 | 240 | -"
machine set BAT0 capacity 53
start_upower
expect 2 'power UPower | Battery Power | - | 53 | 240 | -'

begin 'the bus goes with everything on it, and comes back'
machine set BAT0 capacity 52
services_stop system-bus KILL
expect 2 "$files Battery Power | - | 52 | 240 | -"
machine stop upower KILL
services_start_system_bus
machine set BAT0 capacity 51
start_upower
expect 5 'power UPower | Battery Power | - | 51 | 240 | -'

begin 'a machine without a battery'
services_stop probe
machine remove BAT0
machine_set AC0 online 1
start_probe "$SERVICES_DIR/nothing"
expect 2 'power UPower | AC Power | - | - | - | -'
machine stop upower TERM
expect 2 'power - | unknown'

finish
