#pragma once

#include "KestrelCore/Platform/ProcessList.h"

namespace kestrel {

/// The process list as `/bin/ps` prints it: one external process for each listing, the same on every system.
/// Tells no parents.
class PsProcessList final : public ProcessList {
 public:
  [[nodiscard]] std::optional<std::vector<ProcessRow>> rows() override;
  [[nodiscard]] std::optional<std::string> sourceName() const override { return "/bin/ps"; }
};

}  // namespace kestrel
