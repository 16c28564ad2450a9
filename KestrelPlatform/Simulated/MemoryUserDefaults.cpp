#include "KestrelPlatform/Simulated/MemoryUserDefaults.h"

#include <utility>

namespace kestrel {
namespace {

template <typename Type>
std::optional<Type> valueAs(const std::optional<MemoryUserDefaults::Value>& value) {
  if (!value || !std::holds_alternative<Type>(*value)) return std::nullopt;
  return std::get<Type>(*value);
}

}  // namespace

std::optional<bool> MemoryUserDefaults::boolForKey(std::string_view key) const {
  return valueAs<bool>(valueForKey(key));
}

std::optional<std::int64_t> MemoryUserDefaults::integerForKey(std::string_view key) const {
  return valueAs<std::int64_t>(valueForKey(key));
}

std::optional<double> MemoryUserDefaults::doubleForKey(std::string_view key) const {
  const auto value = valueForKey(key);
  if (const auto whole = valueAs<std::int64_t>(value)) return static_cast<double>(*whole);
  return valueAs<double>(value);
}

std::optional<Date> MemoryUserDefaults::dateForKey(std::string_view key) const {
  return valueAs<Date>(valueForKey(key));
}

bool MemoryUserDefaults::setBool(std::string_view key, bool value) {
  return store(key, value);
}

bool MemoryUserDefaults::setInteger(std::string_view key, std::int64_t value) {
  return store(key, value);
}

bool MemoryUserDefaults::setDouble(std::string_view key, double value) {
  return store(key, value);
}

bool MemoryUserDefaults::setDate(std::string_view key, Date value) {
  return store(key, value);
}

bool MemoryUserDefaults::remove(std::string_view key) {
  return store(key, std::nullopt);
}

RegistrationPtr MemoryUserDefaults::observeOutsideChanges(std::function<void()> onChange) {
  return changed_.subscribe(std::move(onChange));
}

void MemoryUserDefaults::changeFromOutside(std::string_view key, std::optional<Value> value) {
  const LockGuard lock(mutex_);
  if (value) {
    values_.insert_or_assign(std::string(key), *std::move(value));
  } else {
    values_.erase(std::string(key));
  }
}

void MemoryUserDefaults::fireOutsideChange() const {
  changed_();
}

void MemoryUserDefaults::failWrites(bool fail) {
  const LockGuard lock(mutex_);
  failWrites_ = fail;
}

std::optional<MemoryUserDefaults::Value> MemoryUserDefaults::valueForKey(std::string_view key) const {
  const LockGuard lock(mutex_);
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

bool MemoryUserDefaults::store(std::string_view key, std::optional<Value> value) {
  {
    const LockGuard lock(mutex_);
    if (failWrites_) return false;
  }
  changeFromOutside(key, std::move(value));
  return true;
}

}  // namespace kestrel
