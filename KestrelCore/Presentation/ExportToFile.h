#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/SerialQueue.h"

namespace kestrel {

class UsageCoordinator;

/// Writes what a person asked for into the file that they chose in a save dialog, and nowhere else. Main
/// thread; the writing is done on another.
class ExportToFile {
 public:
  struct Result {
    bool isWritten = false;
    /// What happened, for that person.
    std::string text;

    friend bool operator==(const Result&, const Result&) = default;
  };
  /// On the main executor, once, unless the exporter is gone by then.
  using Done = std::function<void(const Result&)>;

  /// The executor outlives this object.
  ExportToFile(std::shared_ptr<const AtomicFileWriter> files, Executor& mainExecutor);

  void write(const std::filesystem::path& chosen, std::string content, Done done);
  /// The account of usage without anything personal.
  void writeUsage(const std::filesystem::path& chosen, UsageCoordinator& usage, Done done);

 private:
  const std::shared_ptr<const AtomicFileWriter> files_;
  Executor& mainExecutor_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
  /// Made for the first file. Last, so that its thread has ended before anything it uses goes.
  std::unique_ptr<SerialQueue> worker_;
};

}  // namespace kestrel
