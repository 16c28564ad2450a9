#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Presentation/Timeline.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// Keeps the timeline over restarts: in a file that is written after a span began, at most once a minute, and
/// at the end. While nothing changes, nothing is written. Main thread.
class TimelineRecorder {
 public:
  static constexpr double kSecondsBetweenWrites = 60;

  TimelineRecorder(std::filesystem::path file, std::shared_ptr<const AtomicFileWriter> files, Logger logger);

  static std::filesystem::path defaultFile(const Directories& directories) {
    return directories.applicationSupport / "Kestrel" / "timeline.json";
  }

  [[nodiscard]] const Timeline& timeline() const { return timeline_; }

  /// Reads the file. One that cannot be read or decoded is one log line, and the timeline begins anew.
  void load(Date now);
  /// The decision of this moment; each evaluation calls it.
  void record(const WakeDecision& decision, Date now);
  /// Writes the file when there is something to write. Nothing before `load`.
  void stop(Date now);

 private:
  void save(Date now);

  const std::filesystem::path file_;
  const std::shared_ptr<const AtomicFileWriter> files_;
  const Logger logger_;
  Timeline timeline_;
  bool isLoaded_ = false;
  bool isUnsaved_ = false;
  std::optional<Date> triedToSaveAt_;
};

}  // namespace kestrel
