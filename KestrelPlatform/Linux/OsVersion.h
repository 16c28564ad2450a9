#pragma once

#include <string>

namespace kestrel {

/// "Debian GNU/Linux 12 (bookworm), Linux 6.1.0-18-amd64".
std::string linuxOsVersion();

}  // namespace kestrel
