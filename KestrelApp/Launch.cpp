#include "KestrelApp/Launch.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <string_view>
#include <system_error>
#include <unistd.h>

#include "KestrelApp/HeadlessApplication.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

constexpr const char* kHeadlessOption = "--headless";
/// Before the number of a descriptor.
constexpr std::string_view kAfterDisplayOption = "--after-display=";

/// Where the caller closed a standard descriptor, its number must not go to a socket that messages would
/// reach.
void occupyStandardDescriptors() {
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDONLY);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) ::close(descriptor);
}

}  // namespace

FrontEnd chooseFrontEnd(const std::vector<std::string>& arguments, bool mayHaveDisplay) {
  const bool isRefused = std::ranges::find(arguments, kHeadlessOption) != arguments.end();
  return mayHaveDisplay && !isRefused ? FrontEnd::desktop : FrontEnd::headless;
}

std::vector<std::string> commandWithoutDisplay(const std::string& program, int sessions) {
  return {program, kHeadlessOption, std::string(kAfterDisplayOption) + std::to_string(sessions)};
}

std::optional<int> sessionsOfLostDisplay(const std::vector<std::string>& arguments) {
  for (const std::string_view argument : arguments) {
    if (!argument.starts_with(kAfterDisplayOption)) continue;
    const std::string_view number = argument.substr(kAfterDisplayOption.size());
    int descriptor = -1;
    const auto end = std::from_chars(number.data(), number.data() + number.size(), descriptor);
    return end.ec == std::errc() && descriptor > STDERR_FILENO ? descriptor : -1;
  }
  return std::nullopt;
}

int launch(const std::vector<std::string>& arguments,
           const std::function<std::optional<int>(const Directories&)>& runDesktop) {
  occupyStandardDescriptors();
  // A client that hangs up early must not end the program.
  std::signal(SIGPIPE, SIG_IGN);
  auto directories = userDirectories();
  if (!directories) {
    std::fputs("Kestrel cannot start: it needs a home directory, and HOME names none.\n", stderr);
    return 1;
  }
  if (chooseFrontEnd(arguments, mayHaveDisplay()) == FrontEnd::desktop) {
    if (const auto status = runDesktop(*directories)) return *status;
  }
  HeadlessApplication application(*std::move(directories), arguments.empty() ? "" : arguments[0]);
  if (const auto sessions = sessionsOfLostDisplay(arguments))
    application.standIn(UniqueDescriptor(*sessions));
  return application.run();
}

std::string replaceProcess(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<char*> words;
  words.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  ::execv(program.c_str(), words.data());
  return std::generic_category().message(errno);
}

}  // namespace kestrel
