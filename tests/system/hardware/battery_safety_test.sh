#!/bin/bash
# The battery's safety rule in the real program, from the real UPower to the real login manager.
. "$(dirname "${BASH_SOURCE[0]}")/machine.sh"
machine_enter "$0" /usr/libexec/upowerd "$SERVICES_LOGIN_MANAGER"
. "$MACHINE_HOME/../kestrel.sh"

blocked='Safety blocked: Battery level below safety cutoff'
held() { [ "$(services_inhibitors Kestrel | wc -l)" -gt 0 ]; }
not_held() { ! held; }
member() { ctl status --json | json_value "$1"; }
reads() { [ "$(member "$1")" = "$2" ]; }

# battery STATUS PERCENT held|not_held: what comes of it, within 2 s and still a moment later.
battery() {
  local took
  machine_set BAT0 status "$1" capacity "$2"
  took=$(milliseconds_until 2 "$3") || fail "$1 at $2 %: not $3 within 2 s: $(status_line)"
  services_wait_until 2 reads batteryPercent "$2" || fail "$2 % is not shown, but '$(member batteryPercent)'"
  sleep 0.5
  "$3" || fail "$1 at $2 %: no longer $3: $(status_line)"
  echo "   $1, $2 %: $3 after $took ms: $(status_line)"
}

services_start_login_manager
machine set BAT0 capacity 17
start_upower
start_kestrel
ctl hold on >/dev/null
services_wait_until 2 held || fail "nothing is held: $(status_line)"
services_wait_until 2 reads source UPower || fail "the readings come from '$(member source)'"

begin 'down to the cutoff, and up again'
battery Discharging 16 held
battery Discharging 15 not_held
has 'the reason' "$blocked" "$(status_line)"
battery Discharging 17 not_held
battery Discharging 18 held

begin 'a charger unblocks'
battery Discharging 15 not_held
machine set AC0 online 1
machine change AC0
battery Charging 14 held
machine set AC0 online 0
machine change AC0
battery Discharging 13 not_held

begin 'a battery that is removed never blocks'
machine remove BAT0
services_wait_until 2 held || fail "blocked without a battery: $(status_line)"
machine add-battery

begin 'UPower is killed and started again'
services_wait_until 2 reads batteryPercent 80 || fail 'the battery is not found again'
machine stop upower KILL
services_wait_until 2 reads source null || fail "still read from '$(member source)'"
held || fail 'what is unknown blocks'
machine set BAT0 capacity 10
start_upower
services_wait_until 2 not_held || fail "10 % does not block: $(status_line)"
has 'the reason' "$blocked" "$(status_line)"

stop_kestrel
finish
