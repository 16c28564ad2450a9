#pragma once

#include <memory>
#include <utility>

#include "KestrelApp/HeadlessStatusLine.h"
#include "KestrelCore/Platform/LogSink.h"

namespace kestrel {

/// Lets log lines pass on a terminal above the status line.
class TerminalLogSink final : public LogSink {
 public:
  TerminalLogSink(std::shared_ptr<LogSink> target, std::shared_ptr<HeadlessStatusLine> statusLine)
      : target_(std::move(target)), statusLine_(std::move(statusLine)) {}

  [[nodiscard]] bool isEnabled(LogLevel level) const override { return target_->isEnabled(level); }
  void write(const LogRecord& record) override {
    if (!isEnabled(record.level)) return;
    statusLine_->hide();
    target_->write(record);
    statusLine_->redraw();
  }

 private:
  const std::shared_ptr<LogSink> target_;
  const std::shared_ptr<HeadlessStatusLine> statusLine_;
};

}  // namespace kestrel
