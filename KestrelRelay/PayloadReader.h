#pragma once

#include "KestrelRelay/Deadline.h"
#include "KestrelRelay/HookPayload.h"

namespace kestrel {

/// Reads a JSON object from a descriptor until its end, a moment after the object's end, or the deadline, and
/// understands what has come by then. Input of any size is taken in, so that its writer meets no broken pipe,
/// and little of it is kept. A terminal, a closed descriptor and one that cannot be read yield an empty
/// payload.
HookPayload readPayload(int descriptor, const Deadline& deadline);

}  // namespace kestrel
