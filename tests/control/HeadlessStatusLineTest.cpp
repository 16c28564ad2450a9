#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "KestrelApp/HeadlessStatusLine.h"
#include "KestrelApp/TerminalLogSink.h"
#include "KestrelCore/Support/StreamLogSink.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/UnixSocket.h"
#include "KestrelPlatform/Simulated/ManualClock.h"

namespace kestrel {
namespace {

constexpr const char* kEnd = "\x1b[K";

std::string readAvailable(int descriptor) {
  setNonBlocking(descriptor, true);
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

/// The two ends of a terminal that is so many columns wide.
class Terminal {
 public:
  explicit Terminal(unsigned short columns) : screen_(::posix_openpt(O_RDWR | O_NOCTTY)) {
    ::setenv("TERM", "xterm", 1);
    if (::grantpt(screen_.get()) != 0 || ::unlockpt(screen_.get()) != 0) return;
    program_ = UniqueDescriptor(::open(::ptsname(screen_.get()), O_RDWR | O_NOCTTY));
    const winsize size{24, columns, 0, 0};
    (void)::ioctl(program_.get(), TIOCSWINSZ, &size);
  }
  [[nodiscard]] int program() const { return program_.get(); }
  [[nodiscard]] std::string screen() const { return readAvailable(screen_.get()); }

 private:
  UniqueDescriptor screen_;
  UniqueDescriptor program_;
};

TEST(HeadlessStatusLine, IsRewrittenInPlaceBelowTheLogOnATerminal) {
  const Terminal terminal(12);
  auto line = std::make_shared<HeadlessStatusLine>(terminal.program());
  auto stream =
      makeStreamLogSink(terminal.program(), LogLineStyle::terminal, std::make_shared<ManualClock>());
  TerminalLogSink sink(std::move(stream), line);
  line->show({"a—b—c—d—e—f—g", "Debounce"});
  line->show({"a—b—c—d—e—f—g", "Debounce"});
  EXPECT_EQ(terminal.screen(), std::string("\ra—b—c—d—e—…") + kEnd);  // Columns, not bytes.
  line->show({"Sleep", "Sleep"});
  EXPECT_EQ(terminal.screen(), std::string("\rSleep") + kEnd);
  sink.write({LogLevel::debug, "s", "c", "unseen", {}});
  EXPECT_EQ(terminal.screen(), "");
  sink.write({LogLevel::info, "s", "c", "news", {}});
  const std::string text = terminal.screen();
  EXPECT_THAT(text, testing::StartsWith(std::string("\r") + kEnd));
  EXPECT_THAT(text, testing::EndsWith(std::string("news\r\n\rSleep") + kEnd));
}

TEST(HeadlessStatusLine, IsANewLineForEachNewsElsewhereAndNeverWaits) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const UniqueDescriptor reader(ends[0]);
  const UniqueDescriptor writer(ends[1]);
  HeadlessStatusLine line(writer.get());
  line.show({"Debounce (30s)", "Debounce"});
  line.show({"Debounce (29s)", "Debounce"});
  line.hide();
  line.redraw();
  line.show({"Sleep", "Sleep"});
  EXPECT_EQ(readAvailable(reader.get()), "Debounce (30s)\nSleep\n");

  setNonBlocking(writer.get(), true);
  const std::string page(4096, 'x');
  while (::write(writer.get(), page.data(), page.size()) > 0) {
  }
  setNonBlocking(writer.get(), false);
  line.show({"Working", "Working"});
  EXPECT_THAT(readAvailable(reader.get()), testing::Not(testing::HasSubstr("Working")));
  line.show({"Working", "Working"});
  EXPECT_EQ(readAvailable(reader.get()), "Working\n");
}

}  // namespace
}  // namespace kestrel
