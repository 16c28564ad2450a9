#include <cstdint>

#include "fuzz/Require.h"

#include "KestrelCore/Control/ControlProtocol.h"
#include "KestrelCore/Support/DecodingError.h"

namespace {

using namespace kestrel;

void checkRequest(std::string_view bytes) {
  const ControlRequest request = decodeControlRequest(bytes);
  const ControlRequest again = decodeControlRequest(encodeControlRequest(request));
  require(again.command == request.command && again.arguments == request.arguments,
          "an encoded request decodes to itself");
}

void checkReply(std::string_view bytes) {
  const ControlReply reply = decodeControlReply(bytes);
  const std::string encoded = encodeControlReply(reply);
  require(encoded.size() <= ControlReply::kMaximumBytes, "a reply stays within its limit");
  require(encodeControlReply(decodeControlReply(encoded)) == encoded, "an encoded reply decodes to itself");
}

template <typename Check>
void tolerateBadInput(Check check, std::string_view bytes) {
  try {
    check(bytes);
  } catch (const DecodingError& error) {
    require(*error.what() != '\0', "an error says what is wrong");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  tolerateBadInput(checkRequest, bytes);
  tolerateBadInput(checkReply, bytes);
  return 0;
}
