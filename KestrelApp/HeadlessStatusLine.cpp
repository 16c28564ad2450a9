#include "KestrelApp/HeadlessStatusLine.h"

#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kestrel {
namespace {

constexpr const char* kClearToEnd = "\x1b[K";
constexpr std::size_t kUsualColumns = 80;

bool canRewriteLines(int descriptor) {
  const char* terminal = std::getenv("TERM");
  return ::isatty(descriptor) == 1 && (terminal == nullptr || std::strcmp(terminal, "dumb") != 0);
}

std::size_t columnsOf(int descriptor) {
  winsize size{};
  const bool known = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : kUsualColumns;
}

bool startsCodePoint(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
}

}  // namespace

std::string cutToColumns(const std::string& text, std::size_t columns) {
  std::size_t used = 0;
  std::size_t cut = 0;  // Where the ellipsis would go.
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!startsCodePoint(text[i])) continue;
    if (++used == columns) cut = i;
    if (used > columns) return columns == 0 ? "" : text.substr(0, cut) + "…";
  }
  return text;
}

HeadlessStatusLine::HeadlessStatusLine(int descriptor)
    : descriptor_(descriptor), isTerminal_(canRewriteLines(descriptor)) {}

HeadlessStatusLine::~HeadlessStatusLine() {
  const LockGuard guard(mutex_);
  if (isTerminal_ && !shown_.empty()) (void)writeNow("\n");
}

void HeadlessStatusLine::show(const StatusLine& line) {
  const LockGuard guard(mutex_);
  const std::string& next = isTerminal_ ? line.text : line.withoutCountdown;
  if (next == shown_) return;
  if (writeNow(isTerminal_ ? onTerminal(line.text) : line.text + "\n")) shown_ = next;
}

void HeadlessStatusLine::hide() {
  const LockGuard guard(mutex_);
  if (isTerminal_ && !shown_.empty()) (void)writeNow(std::string("\r") + kClearToEnd);
}

void HeadlessStatusLine::redraw() {
  const LockGuard guard(mutex_);
  if (isTerminal_ && !shown_.empty()) (void)writeNow(onTerminal(shown_));
}

std::string HeadlessStatusLine::onTerminal(const std::string& text) const {
  // The last column stays free: a full line makes some terminals wrap.
  return std::string("\r").append(cutToColumns(text, columnsOf(descriptor_) - 1)).append(kClearToEnd);
}

bool HeadlessStatusLine::writeNow(const std::string& text) const {
  pollfd readiness{descriptor_, POLLOUT, 0};
  if (::poll(&readiness, 1, 0) != 1 || (readiness.revents & POLLOUT) == 0) return false;
  return ::write(descriptor_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

}  // namespace kestrel
