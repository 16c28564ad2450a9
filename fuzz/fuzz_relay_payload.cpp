#include <cstdint>

#include "fuzz/Require.h"

#include "KestrelRelay/RelayRecord.h"
#include "KestrelRelay/StateMapping.h"

namespace {

using namespace kestrel;

HookPayload parsed(std::string_view bytes, std::size_t pieceSize) {
  HookPayloadParser parser;
  for (std::size_t i = 0; i < bytes.size(); i += pieceSize) parser.feed(bytes.substr(i, pieceSize));
  return parser.payload();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const HookPayload payload = parsed(bytes, size + 1);
  const HookPayload inPieces = parsed(bytes, 3);
  require(payload.sessionId == inPieces.sessionId && payload.cwd == inPieces.cwd &&
              payload.event == inPieces.event,
          "how the input is cut makes no difference");

  RelayOptions options;
  options.agent = "claude";
  const HookSurroundings surroundings{1, "/", Date::since1970(1.5e9)};
  const AgentState state = stateOfHook(payload).value_or(AgentState::unknown);
  const std::string record = encodeRecord(makeHookEvent(options, payload, state, surroundings));
  require(record.size() < kMaximumRecordSize, "a record fits one read");
  require(HookEvent::parse(record, Date()).state == state, "the receiver understands the record");
  return 0;
}
