#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "KestrelCore/Platform/UserDefaults.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

/// A defaults database that lasts as long as this object.
class MemoryUserDefaults final : public UserDefaults {
 public:
  /// A string stands for every value of a type that has no reader.
  using Value = std::variant<bool, std::int64_t, double, Date, std::string>;

  [[nodiscard]] std::optional<bool> boolForKey(std::string_view key) const override;
  [[nodiscard]] std::optional<std::int64_t> integerForKey(std::string_view key) const override;
  [[nodiscard]] std::optional<double> doubleForKey(std::string_view key) const override;
  [[nodiscard]] std::optional<Date> dateForKey(std::string_view key) const override;

  [[nodiscard]] bool setBool(std::string_view key, bool value) override;
  [[nodiscard]] bool setInteger(std::string_view key, std::int64_t value) override;
  [[nodiscard]] bool setDouble(std::string_view key, double value) override;
  [[nodiscard]] bool setDate(std::string_view key, Date value) override;
  [[nodiscard]] bool remove(std::string_view key) override;

  [[nodiscard]] std::optional<std::string> problem() const override { return std::nullopt; }
  [[nodiscard]] RegistrationPtr observeOutsideChanges(std::function<void()> onChange) override;

  /// Changes a value (absent: removes it) as another process would, without telling; `fireOutsideChange`
  /// tells.
  void changeFromOutside(std::string_view key, std::optional<Value> value);
  void fireOutsideChange() const;
  /// Whether the following writes are refused.
  void failWrites(bool fail);
  /// What is stored, of whatever type.
  [[nodiscard]] std::optional<Value> valueForKey(std::string_view key) const;

 private:
  [[nodiscard]] bool store(std::string_view key, std::optional<Value> value);

  mutable Mutex mutex_{LockRank::leaf};
  std::map<std::string, Value, std::less<>> values_ KESTREL_GUARDED_BY(mutex_);
  bool failWrites_ KESTREL_GUARDED_BY(mutex_) = false;
  Signal<> changed_;
};

}  // namespace kestrel
