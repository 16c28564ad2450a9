#pragma once

#include <string>

namespace kestrel {

/// A fresh random UUID (version 4) in upper case: "3F2504E0-4F89-41D3-9A0C-0305E82C3301". From any thread.
std::string randomUuid();

}  // namespace kestrel
