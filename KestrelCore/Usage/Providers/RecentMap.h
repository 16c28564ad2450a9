#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>

namespace kestrel {

/// Remembers values by text, of the entries used last at least `limit` and at most twice as many. Not
/// thread-safe.
template <typename Value>
class RecentMap {
 public:
  explicit RecentMap(std::size_t limit) : limit_(limit) {}

  /// The entry's value, a fresh one when it is not remembered. Valid until the next call.
  Value& operator[](const std::string& key) {
    if (const auto entry = young_.find(key); entry != young_.end()) return entry->second;
    if (young_.size() >= limit_) old_ = std::exchange(young_, {});
    auto known = old_.extract(key);
    return known ? young_.insert(std::move(known)).position->second : young_[key];
  }

 private:
  const std::size_t limit_;
  std::unordered_map<std::string, Value> young_;
  std::unordered_map<std::string, Value> old_;
};

}  // namespace kestrel
