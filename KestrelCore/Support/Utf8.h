#pragma once

#include <string>
#include <string_view>

namespace kestrel {

/// Whether the bytes are well-formed UTF-8.
bool isUtf8(std::string_view bytes);

/// Puts a question mark in the place of each byte that belongs to no well-formed sequence.
void makeUtf8(std::string& bytes);

}  // namespace kestrel
