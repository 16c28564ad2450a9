#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// The per-user defaults database of the application's domain. A missing value and one of another type read
/// as absent. Reads from any thread; writes and the observer on the main thread.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  [[nodiscard]] virtual std::optional<bool> boolForKey(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::int64_t> integerForKey(std::string_view key) const = 0;
  /// A whole number is a valid double.
  [[nodiscard]] virtual std::optional<double> doubleForKey(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<Date> dateForKey(std::string_view key) const = 0;

  // A write is on disk, or with the system's settings service, when it returns; false when it could not be
  // kept.
  [[nodiscard]] virtual bool setBool(std::string_view key, bool value) = 0;
  [[nodiscard]] virtual bool setInteger(std::string_view key, std::int64_t value) = 0;
  [[nodiscard]] virtual bool setDouble(std::string_view key, double value) = 0;
  [[nodiscard]] virtual bool setDate(std::string_view key, Date value) = 0;
  [[nodiscard]] virtual bool remove(std::string_view key) = 0;

  /// Why what is stored cannot be read, in words; absent when it can, or when nothing is stored.
  [[nodiscard]] virtual std::optional<std::string> problem() const = 0;

  /// Calls back on the main thread within a second after another process changed the database.
  [[nodiscard]] virtual RegistrationPtr observeOutsideChanges(std::function<void()> onChange) = 0;
};

}  // namespace kestrel
