#include "KestrelPlatform/Simulated/MemoryLogSink.h"

#include <algorithm>
#include <utility>

namespace kestrel {

MemoryLogSink::~MemoryLogSink() {
  for (Node* node = newest_; node != nullptr;) delete std::exchange(node, node->previous);
}

bool MemoryLogSink::isEnabled(LogLevel) const {
  return true;
}

void MemoryLogSink::write(const LogRecord& record) {
  Node* node = new Node{{record.level, std::string(record.subsystem), std::string(record.category),
                         std::string(record.message), std::string(record.repeatKey)},
                        newest_};
  while (!newest_.compare_exchange_weak(node->previous, node)) {
  }
}

std::vector<MemoryLogSink::Line> MemoryLogSink::lines() const {
  std::vector<Line> result;
  const Node* end = lastHidden_;
  for (const Node* node = newest_; node != end; node = node->previous) result.push_back(node->line);
  std::reverse(result.begin(), result.end());
  return result;
}

std::vector<std::string> MemoryLogSink::lines(std::string_view category) const {
  std::vector<std::string> result;
  for (Line& line : lines()) {
    if (line.category == category) result.push_back(std::move(line.message));
  }
  return result;
}

std::size_t MemoryLogSink::count(std::string_view messagePart) const {
  const std::vector<Line> all = lines();
  return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), [&](const Line& line) {
    return line.message.find(messagePart) != std::string::npos;
  }));
}

void MemoryLogSink::clear() {
  lastHidden_ = newest_.load();
}

}  // namespace kestrel
