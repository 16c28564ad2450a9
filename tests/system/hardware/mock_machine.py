#!/usr/bin/python3
"""A made-up machine with a battery, an adapter and a lid, for real services. To be run under umockdev-wrapper.

Commands on standard input, one a line; each is answered with "done" on standard output:
  start NAME PROGRAM [ARGUMENT...]   a service that sees this machine; its output goes to NAME.log
  stop NAME SIGNAL                   ends it and waits
  set DEVICE ATTRIBUTE VALUE         AC0 or BAT0; nobody is told
  change DEVICE                      tells the services
  remove DEVICE                      and tells
  add-battery                        one as at first, and tells
  lid open|closed                    sets the lid's switch; nobody is told
  move-lid open|closed               tells as well, whoever reads the switch first
The first line of the output is the folder that stands for the root.
"""
import os
import signal
import struct
import subprocess
import sys
import threading

import gi
gi.require_version('UMockdev', '1.0')
from gi.repository import GLib, UMockdev  # noqa: E402

BATTERY = ['type', 'Battery', 'present', '1', 'status', 'Discharging', 'technology', 'Li-ion', 'scope', 'System',
           'voltage_min_design', '12000000', 'voltage_now', '12000000', 'energy_full_design', '80000000',
           'energy_full', '60000000', 'energy_now', '48000000', 'power_now', '12000000', 'capacity', '80']
LID_DEVICE = '/dev/input/event0'
LID = '''P: /devices/lid/input/input0
E: SUBSYSTEM=input
A: name=Lid Switch
A: capabilities/sw=1

P: /devices/lid/input/input0/event0
N: input/event0
E: DEVNAME=/dev/input/event0
E: SUBSYSTEM=input
E: MAJOR=13
E: MINOR=64
E: ID_INPUT=1
E: ID_INPUT_SWITCH=1
E: ID_SEAT=seat0
E: TAGS=:power-switch:
A: dev=13:64
'''
UDEV_DATA = 'I:1\nE:ID_INPUT=1\nE:ID_INPUT_SWITCH=1\nE:ID_SEAT=seat0\nG:power-switch\nQ:power-switch\nV:1\n'


class LidSwitch(UMockdev.IoctlBase):
    """Answers for the switch as the kernel's input devices do."""
    closed = 0

    def do_handle_ioctl(self, client):
        request = client.get_request() & 0xFFFFFFFF
        number, size = request & 0xFF, (request >> 16) & 0x3FFF
        if (request >> 8) & 0xFF != ord('E'):
            client.complete(-1, 25)  # ENOTTY
            return True
        # Which kinds of events there are, which switches, and how they stand; anything else succeeds.
        answer = {0x20: 0x21, 0x25: 1, 0x1B: self.closed}.get(number)
        if answer is not None:
            client.get_arg().resolve(0, size).update(0, bytes([answer]) + bytes(size - 1))
        client.complete(0, 0)
        return True


class Machine:
    def __init__(self):
        self.testbed = UMockdev.Testbed.new()
        self.paths = {'AC0': self.add('AC0', ['type', 'Mains', 'online', '0'])}
        self.add_battery()
        self.testbed.add_from_string(LID)
        self.lid = LidSwitch()
        self.testbed.attach_ioctl(LID_DEVICE, self.lid)
        os.makedirs('/run/udev/tags/power-switch', exist_ok=True)
        open('/run/udev/tags/power-switch/c13:64', 'w').close()
        os.makedirs('/run/udev/data', exist_ok=True)
        with open('/run/udev/data/c13:64', 'w') as file:
            file.write(UDEV_DATA)
        firmware = self.testbed.get_root_dir() + '/sys/firmware/acpi'
        os.makedirs(firmware)
        for name, text in (('platform_profile', 'balanced'),
                           ('platform_profile_choices', 'low-power balanced performance')):
            with open(firmware + '/' + name, 'w') as file:
                file.write(text + '\n')
        self.services = {}

    def add(self, name, attributes):
        return self.testbed.add_device('power_supply', name, None, attributes, [])

    def add_battery(self):
        self.paths['BAT0'] = self.add('BAT0', BATTERY)
        self.testbed.uevent(self.paths['BAT0'], 'add')

    def run(self, command, *words):
        if command == 'start':
            with open(os.environ['SERVICES_DIR'] + '/' + words[0] + '.log', 'a') as log:
                # No `env`: the mock's variables were set behind Python's back and are in no os.environ.
                self.services[words[0]] = subprocess.Popen(words[1:], stdout=log, stderr=log)
        elif command == 'stop':
            service = self.services.pop(words[0])
            service.send_signal(getattr(signal, 'SIG' + words[1]))
            service.wait()
        elif command == 'set':
            self.testbed.set_attribute(self.paths[words[0]], words[1], ' '.join(words[2:]))
        elif command == 'change':
            self.testbed.uevent(self.paths[words[0]], 'change')
        elif command == 'remove':
            self.testbed.uevent(self.paths[words[0]], 'remove')
            self.testbed.remove_device(self.paths.pop(words[0]))
        elif command == 'add-battery':
            self.add_battery()
        elif command in ('lid', 'move-lid'):
            self.lid.closed = 1 if words[0] == 'closed' else 0
            if command == 'move-lid':
                # struct input_event: a time, EV_SW, SW_LID and its value, then the end of the report.
                event = struct.pack('@llHHi', 0, 0, 5, 0, self.lid.closed) + struct.pack('@llHHi', 0, 0, 0, 0, 0)
                os.write(self.testbed.get_dev_fd(LID_DEVICE), event)
        else:
            raise ValueError(command)


def main():
    machine = Machine()
    threading.Thread(target=GLib.MainLoop().run, daemon=True).start()
    print(machine.testbed.get_root_dir(), flush=True)
    try:
        for line in sys.stdin:
            machine.run(*line.split())
            print('done', flush=True)
    finally:
        for service in machine.services.values():
            service.kill()


main()
