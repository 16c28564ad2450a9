#!/bin/bash
# The rule for heat in the real program: made-up thermal zones, the real login manager.
. "$(dirname "${BASH_SOURCE[0]}")/../services/lib.sh"
[ -d /sys/class/thermal ] || services_skip 'this kernel has no thermal zones to stand in for'
services_enter "$0"
. "$(dirname "${BASH_SOURCE[0]}")/../kestrel.sh"

zone=$SERVICES_DIR/thermal/thermal_zone0
mkdir -p "$zone"
put() { printf '%s\n' "$2" >"$zone/$1"; }
put type x86_pkg_temp
put temp 60000
put trip_point_0_type passive
put trip_point_0_temp 95000
put trip_point_1_type critical
put trip_point_1_temp 105000
mount --bind "$SERVICES_DIR/thermal" /sys/class/thermal || services_skip 'a mount over /sys is refused here'

held() { [ "$(services_inhibitors Kestrel | wc -l)" -gt 0 ]; }
not_held() { ! held; }
reads() { [ "$(ctl status --json | json_value "$1")" = "$2" ]; }

# heat DEGREES STATE WITHIN held|not_held: and still so after the next reading.
heat() {
  local took
  put temp "$1000"
  took=$(milliseconds_until "$3" reads thermalState "$2") || fail "$1 degrees: not $2 within $3 s"
  services_wait_until 1 "$4" || fail "$1 degrees: not $4: $(status_line)"
  sleep 1.2
  reads thermalState "$2" || fail "$1 degrees: no longer $2"
  echo "   $1 degrees: $2, $4 after $took ms: $(status_line)"
}

services_start_system_bus
services_start_login_manager
start_kestrel
ctl hold on >/dev/null
services_wait_until 2 held || fail "nothing is held: $(status_line)"
services_wait_until 2 reads thermalSource /sys/class/thermal || fail 'the source is not shown'

begin 'up'
heat 86 fair 6 held
heat 96 serious 12 held
heat 101 critical 2 not_held
begin 'down, each level 5 degrees below its entry'
heat 96 critical 2 not_held
heat 94 serious 2 held
heat 91 serious 2 held
heat 89 fair 2 held
heat 81 fair 2 held
heat 79 nominal 2 held

stop_kestrel
finish
