#pragma once

#include <filesystem>
#include <optional>

#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

class AtomicFileWriter;

/// Held for the life of the process that runs Kestrel for this user; the system drops it when the process
/// ends.
class InstanceLock {
 public:
  enum class Outcome { acquired, heldByAnother, failed };

  [[nodiscard]] Outcome acquire(const std::filesystem::path& path, const AtomicFileWriter& files);

 private:
  UniqueDescriptor descriptor_;
};

}  // namespace kestrel
