#include "KestrelCore/Agents/PsProcessList.h"

#include "KestrelCore/Agents/ProcessListing.h"
#include "KestrelCore/Support/ChildProcess.h"

namespace kestrel {
namespace {

/// Thousands of processes, some with command lines as long as a system takes.
constexpr std::size_t kMaximumListingBytes = 32 * 1024 * 1024;

}  // namespace

std::optional<std::vector<ProcessRow>> PsProcessList::rows() {
  const auto listing = runChildProcess({"/bin/ps", "-axo", "pid,command"},
                                       {.timeoutSeconds = 5, .maximumOutputBytes = kMaximumListingBytes});
  if (!listing || listing->status != 0 || listing->outputWasCut) return std::nullopt;
  return parseProcessListing(listing->output);
}

}  // namespace kestrel
