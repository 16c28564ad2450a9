#include "tests/platform/PowerAssertionsDesktop.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrel::test {
namespace {

/// The child ends with this process.
pid_t start(const std::string& command, int input) {
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::dup2(input, STDIN_FILENO);
  ::execlp("sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
  ::_exit(127);
}

void end(pid_t& child) {
  if (child <= 0) return;
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  child = -1;
}

bool waitFor(const std::function<bool()>& condition) {
  for (int i = 0; i < 2500 && !condition(); ++i) ::poll(nullptr, 0, 2);
  return condition();
}

}  // namespace

PrivateDesktop::PrivateDesktop() {
  const std::string socket = (directory_ / "session").string();
  ::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + socket).c_str(), 1);
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + (directory_ / "system").string()).c_str(), 1);
  bus_ = start("dbus-daemon --session --nofork --nopidfile --address='unix:path=" + socket + "' 2>/dev/null",
               STDIN_FILENO);
}

PrivateDesktop::~PrivateDesktop() {
  leave();
  end(bus_);
}

bool PrivateDesktop::serve(const std::string& name) {
  if (!waitFor([this] { return std::filesystem::exists(directory_ / "session"); })) return false;
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return false;
  const auto standin = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "desktop_standin";
  const int before = calls("ready");
  desktop_ = start(
      "'" + standin.string() + "' " + name + " >>'" + (directory_ / "desktop.log").string() + "'", ends[0]);
  ::close(ends[0]);
  input_ = ends[1];
  return waitFor([&] { return calls("ready") > before; });
}

void PrivateDesktop::leave() {
  end(desktop_);
  if (input_ >= 0) ::close(input_);
  input_ = -1;
}

void PrivateDesktop::tell(const std::string& command) {
  const int before = calls("obeyed");
  const std::string line = command + "\n";
  if (::write(input_, line.data(), line.size()) > 0) waitFor([&] { return calls("obeyed") > before; });
}

int PrivateDesktop::calls(const std::string& text) const {
  std::ifstream log(directory_ / "desktop.log");
  int count = 0;
  for (std::string line; std::getline(log, line);) count += line.find(text) != std::string::npos ? 1 : 0;
  return count;
}

}  // namespace kestrel::test
