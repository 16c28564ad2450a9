#include <cstdint>

#include "fuzz/Require.h"

#include "KestrelCore/Power/DeepHoldProtocol.h"
#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/JsonObjectEnd.h"

namespace {

using namespace kestrel;

void checkRequest(std::string_view bytes) {
  const HelperRequest request = decodeHelperRequest(bytes);
  const auto encoded = encodeHelperRequest(request);
  require(encoded && decodeHelperRequest(*encoded) == request, "an encoded request decodes to itself");
  const auto end = endOfJsonObject(bytes);
  require(end && decodeHelperRequest(bytes.substr(0, *end)) == request, "a request is found to be complete");
  require(!endOfJsonObject(bytes.substr(0, *end - 1)), "and not before its last byte");
}

void checkResponse(std::string_view bytes) {
  const HelperResponse response = decodeHelperResponse(bytes);
  require(decodeHelperResponse(encodeHelperResponse(response)) == response,
          "an encoded response decodes to itself");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  for (const auto check : {checkRequest, checkResponse}) {
    try {
      check(bytes);
    } catch (const DecodingError&) {
      continue;
    }
  }
  return 0;
}
