#include <cstdint>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/Require.h"

#include "KestrelCore/Usage/UsageStoreFile.h"

using namespace kestrel;

UsageStoreFile::Content load(std::string_view text) {
  static const int file = ::memfd_create("store", MFD_CLOEXEC);
  require(::ftruncate(file, 0) == 0 && ::pwrite(file, text.data(), text.size(), 0) >= 0, "a file is there");
  return UsageStoreFile::load("/proc/self/fd/" + std::to_string(file));
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto content = load({reinterpret_cast<const char*>(data), size});
  std::string text;
  UsageStoreFile::save(content.ledger, [&](std::string_view piece) { text.append(piece); });
  const auto again = load(text);
  require(again.found == UsageStoreFile::Found::schema, "what was read can be written and read");
  require(again.ledger.rows().size() == content.ledger.rows().size(), "every event survives");
  require(again.ledger.sessions().size() == content.ledger.sessions().size(), "every session survives");
  return 0;
}
