// A desktop's inhibition services on the session bus, as far as a program that inhibits needs them, and its
// portal.
//   desktop_standin NAME...     the bus names to own, of those in kServices; prints "ready"
// Every call is a line on standard output. Commands on standard input, each answered with "obeyed", set what
// happens from then on:
//   grant | refuse | silent     how Inhibit is answered; silent ones are granted by the next `grant`
//   forget                      drops every cookie without telling anybody
//   scheme NUMBER               the portal's color-scheme, which it announces after another setting
//   quit
#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <poll.h>
#include <string>
#include <string_view>
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <vector>

namespace {

struct Service {
  const char* name;
  const char* path;
  const char* interface;
  const sd_bus_vtable* methods;
};

struct Cookie {
  std::string client;
  std::string interface;
  std::uint32_t flags = 0;
};

struct Desktop {
  sd_bus* bus = nullptr;
  std::uint32_t scheme = 0;
  std::string manner = "grant";
  std::uint32_t lastCookie = 0;
  std::map<std::uint32_t, Cookie> cookies;
  std::vector<sd_bus_message*> unanswered;
};

Desktop desktop;

int grant(sd_bus_message* call) {
  const char *application = "", *reason = "";
  std::uint32_t window = 0, flags = 0;
  sd_bus_message_rewind(call, 1);
  const int status = sd_bus_message_has_signature(call, "susu") > 0
                         ? sd_bus_message_read(call, "susu", &application, &window, &reason, &flags)
                         : sd_bus_message_read(call, "ss", &application, &reason);
  if (status < 0) return status;
  const std::uint32_t cookie = ++desktop.lastCookie;
  desktop.cookies[cookie] = {sd_bus_message_get_sender(call), sd_bus_message_get_interface(call), flags};
  std::cout << "inhibit " << sd_bus_message_get_interface(call) << " " << application << ": " << reason
            << " flags " << flags << " cookie " << cookie << std::endl;
  return sd_bus_reply_method_return(call, "u", cookie);
}

int inhibit(sd_bus_message* call, void*, sd_bus_error*) {
  if (desktop.manner == "grant") return grant(call);
  std::cout << desktop.manner << " " << sd_bus_message_get_interface(call) << std::endl;
  if (desktop.manner == "refuse") {
    return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "Not while presenting");
  }
  desktop.unanswered.push_back(sd_bus_message_ref(call));
  return 1;
}

int uninhibit(sd_bus_message* call, void*, sd_bus_error*) {
  std::uint32_t cookie = 0;
  sd_bus_message_read(call, "u", &cookie);
  const bool known = desktop.cookies.erase(cookie) > 0;
  std::cout << "uninhibit " << cookie << (known ? "" : " unknown") << std::endl;
  return sd_bus_reply_method_return(call, nullptr);
}

int isInhibited(sd_bus_message* call, void*, sd_bus_error*) {
  std::uint32_t flags = 0;
  if (sd_bus_message_has_signature(call, "u") > 0) sd_bus_message_read(call, "u", &flags);
  const std::string_view interface = sd_bus_message_get_interface(call);
  const bool inhibited = std::ranges::any_of(desktop.cookies, [&](const auto& entry) {
    return entry.second.interface == interface && (entry.second.flags & flags) == flags;
  });
  return sd_bus_reply_method_return(call, "b", inhibited);
}

/// As the standard has it for this call, with a variant too many.
int readSetting(sd_bus_message* call, void*, sd_bus_error*) {
  std::cout << "read" << std::endl;
  return sd_bus_reply_method_return(call, "v", "v", "u", desktop.scheme);
}

void announce(const char* setting, std::uint32_t value) {
  sd_bus_emit_signal(desktop.bus, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
                     "SettingChanged", "ssv", "org.freedesktop.appearance", setting, "u", value);
}

int onOwnerChanged(sd_bus_message* signal, void*, sd_bus_error*) {
  const char *name = "", *oldOwner = "", *newOwner = "";
  sd_bus_message_read(signal, "sss", &name, &oldOwner, &newOwner);
  const auto dropped =
      std::erase_if(desktop.cookies, [&](const auto& entry) { return entry.second.client == name; });
  if (dropped > 0) std::cout << "vanished with " << dropped << " cookies" << std::endl;
  return 0;
}

const sd_bus_vtable kSessionManagerMethods[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("Inhibit", "susu", "u", inhibit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Uninhibit", "u", "", uninhibit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("IsInhibited", "u", "b", isInhibited, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};
const sd_bus_vtable kPowerManagementMethods[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("Inhibit", "ss", "u", inhibit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("UnInhibit", "u", "", uninhibit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("HasInhibit", "", "b", isInhibited, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};
const sd_bus_vtable kScreenSaverMethods[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("Inhibit", "ss", "u", inhibit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("UnInhibit", "u", "", uninhibit, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};

const sd_bus_vtable kSettingsMethods[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("Read", "ss", "v", readSetting, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

const Service kServices[] = {
    {"org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager",
     kSessionManagerMethods},
    {"org.freedesktop.PowerManagement", "/org/freedesktop/PowerManagement/Inhibit",
     "org.freedesktop.PowerManagement.Inhibit", kPowerManagementMethods},
    {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver",
     kScreenSaverMethods},
    {"org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
     kSettingsMethods},
};

bool own(sd_bus* bus, std::string_view name) {
  const auto service = std::ranges::find(kServices, name, [](const Service& each) { return each.name; });
  return service != std::end(kServices) &&
         sd_bus_add_object_vtable(bus, nullptr, service->path, service->interface, service->methods,
                                  nullptr) >= 0 &&
         sd_bus_request_name(bus, service->name, 0) >= 0;
}

/// Returns false at `quit`.
bool obey(const std::string& command) {
  if (command == "quit") return false;
  if (command == "forget") {
    desktop.cookies.clear();
  } else if (command.starts_with("scheme ")) {
    desktop.scheme = static_cast<std::uint32_t>(std::stoul(command.substr(7)));
    announce("contrast", 1);
    announce("color-scheme", desktop.scheme);
  } else {
    desktop.manner = command;
  }
  if (command == "grant") {
    for (sd_bus_message* call : desktop.unanswered) {
      grant(call);
      sd_bus_message_unref(call);
    }
    desktop.unanswered.clear();
  }
  std::cout << "obeyed " << command << std::endl;
  return true;
}

/// The end of the input leaves the services running.
bool readCommands(pollfd& input) {
  static std::string pending;
  char buffer[512];
  const ssize_t length = ::read(input.fd, buffer, sizeof buffer);
  if (length <= 0) {
    input.fd = -1;
    return true;
  }
  pending.append(buffer, static_cast<std::size_t>(length));
  for (auto end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
    if (!obey(pending.substr(0, end))) return false;
    pending.erase(0, end + 1);
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  sd_bus* bus = nullptr;
  int status = sd_bus_open_user(&bus);
  desktop.bus = bus;
  if (status >= 0) {
    status = sd_bus_match_signal(bus, nullptr, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                 "org.freedesktop.DBus", "NameOwnerChanged", onOwnerChanged, nullptr);
  }
  for (int i = 1; i < argc && status >= 0; ++i) status = own(bus, argv[i]) ? 0 : -1;
  if (status < 0) {
    std::cerr << "desktop_standin: cannot serve on the session bus" << std::endl;
    return 1;
  }
  std::cout << "ready" << std::endl;
  pollfd watched[2] = {{sd_bus_get_fd(bus), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
  for (bool running = true; running;) {
    while ((status = sd_bus_process(bus, nullptr)) > 0) {
    }
    if (status < 0 || sd_bus_flush(bus) < 0) break;
    ::poll(watched, 2, -1);
    if ((watched[1].revents & (POLLIN | POLLHUP)) != 0) running = readCommands(watched[1]);
  }
  sd_bus_flush_close_unref(bus);
  return 0;
}
