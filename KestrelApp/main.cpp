#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "KestrelApp/CommandLine.h"
#include "KestrelApp/Launch.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace {

constexpr const char* kDesktopProgram = "kestrel-desktop";

/// The windows live in an executable of their own, whose libraries would triple the memory of this one.
/// Returns only when it cannot be run.
std::optional<int> becomeDesktop(const std::vector<std::string>& arguments) {
  const auto program = kestrel::companionProgram(kDesktopProgram);
  const std::string problem =
      program ? kestrel::replaceProcess(program->string(), arguments) : "it is not installed";
  std::fprintf(stderr, "Kestrel goes on without windows: %s cannot be run: %s.\n", kDesktopProgram,
               problem.c_str());
  return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv, argv + argc);
  if (kestrel::printAnswerToOptions(arguments)) return 0;
  return kestrel::launch(arguments, [&](const auto&) { return becomeDesktop(arguments); });
}
