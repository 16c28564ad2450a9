#pragma once

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// Watches a descriptor on the main thread's run loop, as `Executor::watch` says. Null when it cannot be
/// watched.
[[nodiscard]] RegistrationPtr watchFileDescriptor(int descriptor, Executor::Readiness readiness,
                                                  Executor::Task task);

}  // namespace kestrel
