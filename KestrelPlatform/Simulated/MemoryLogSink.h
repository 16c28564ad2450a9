#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Platform/LogSink.h"

namespace kestrel {

/// Keeps every line, debug lines too. Safe from any thread; takes no lock, so it can be written to under any.
class MemoryLogSink final : public LogSink {
 public:
  struct Line {
    LogLevel level = LogLevel::info;
    std::string subsystem;
    std::string category;
    std::string message;
    std::string repeatKey;
  };

  MemoryLogSink() = default;
  ~MemoryLogSink() override;
  MemoryLogSink(const MemoryLogSink&) = delete;
  MemoryLogSink& operator=(const MemoryLogSink&) = delete;

  [[nodiscard]] bool isEnabled(LogLevel level) const override;
  void write(const LogRecord& record) override;

  /// In order of writing.
  [[nodiscard]] std::vector<Line> lines() const;
  /// The messages of one category.
  [[nodiscard]] std::vector<std::string> lines(std::string_view category) const;
  /// How many messages contain a text.
  [[nodiscard]] std::size_t count(std::string_view messagePart) const;
  /// Lines written so far are not shown again.
  void clear();

 private:
  struct Node {
    Line line;
    Node* previous = nullptr;
  };

  std::atomic<Node*> newest_{nullptr};
  std::atomic<Node*> lastHidden_{nullptr};
};

}  // namespace kestrel
