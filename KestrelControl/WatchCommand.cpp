#include "KestrelControl/WatchCommand.h"

#include <chrono>
#include <thread>
#include <unistd.h>

#include "KestrelControl/ControlOptions.h"
#include "KestrelControl/Output.h"

namespace kestrel {
namespace {

constexpr std::chrono::seconds kInterval{1};
/// To the upper left, and after the text clear what is left of the one before, line by line.
constexpr const char* kHome = "\x1b[H";
constexpr const char* kClearScreen = "\x1b[H\x1b[2J";
constexpr const char* kClearRestOfLine = "\x1b[K";
constexpr const char* kClearBelow = "\x1b[J";

std::string inPlace(const std::string& text) {
  std::string result = kHome;
  for (const char character : text) {
    if (character == '\n') result += kClearRestOfLine;
    result += character;
  }
  return result + kClearBelow;
}

}  // namespace

bool watch(const WatchedText& text) {
  const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;
  if (isTerminal && print(kClearScreen) != kControlDone) return true;
  for (std::string shown;;) {
    const auto now = text();
    if (!now) return false;
    if (*now != shown && print(isTerminal ? inPlace(*now) : *now) != kControlDone) return true;
    shown = *now;
    std::this_thread::sleep_for(kInterval);
  }
}

}  // namespace kestrel
