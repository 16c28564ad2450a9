#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "KestrelCore/Platform/UserDefaults.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// User defaults in one flat JSON object, which people may edit. Each read looks whether the file changed.
/// Keys that Kestrel does not know, and values of another type than it expects, survive its writes.
///
/// A file that is no JSON object, or too large for one, reads as empty and stays where it is (an editor may
/// be writing it); the first own write moves it aside, to the same name with ".unreadable-" and the time.
class JsonFileDefaults final : public UserDefaults {
 public:
  static constexpr std::size_t kMaximumBytes = 1 << 20;
  static constexpr double kObservationInterval = 0.5;

  /// The executor is the main one and outlives this object; it runs a timer only while somebody observes.
  JsonFileDefaults(std::filesystem::path path, Executor& mainExecutor,
                   std::shared_ptr<const AtomicFileWriter> files, std::shared_ptr<const Clock> clock,
                   Logger logger);
  ~JsonFileDefaults() override;

  [[nodiscard]] std::optional<bool> boolForKey(std::string_view key) const override;
  /// 15.0 is no integer.
  [[nodiscard]] std::optional<std::int64_t> integerForKey(std::string_view key) const override;
  [[nodiscard]] std::optional<double> doubleForKey(std::string_view key) const override;
  /// A number of seconds since 2001.
  [[nodiscard]] std::optional<Date> dateForKey(std::string_view key) const override;

  [[nodiscard]] bool setBool(std::string_view key, bool value) override;
  [[nodiscard]] bool setInteger(std::string_view key, std::int64_t value) override;
  /// Refuses a value that is not finite: JSON has none.
  [[nodiscard]] bool setDouble(std::string_view key, double value) override;
  [[nodiscard]] bool setDate(std::string_view key, Date value) override;
  [[nodiscard]] bool remove(std::string_view key) override;

  [[nodiscard]] std::optional<std::string> problem() const override;
  [[nodiscard]] RegistrationPtr observeOutsideChanges(std::function<void()> onChange) override;

 private:
  class File;

  Executor& mainExecutor_;
  const std::shared_ptr<File> file_;
};

}  // namespace kestrel
