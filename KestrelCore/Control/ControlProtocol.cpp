#include "KestrelCore/Control/ControlProtocol.h"

#include <utility>

#include "KestrelCore/Support/Json.h"

namespace kestrel {

ControlReply ControlReply::success(Json result) {
  return {std::make_shared<const Json>(std::move(result)), {}};
}

ControlReply ControlReply::failure(std::string error) {
  return {nullptr, std::move(error)};
}

ControlRequest decodeControlRequest(std::string_view bytes) {
  const Json object = parseJsonObject(bytes);
  ControlRequest request{requiredString(object, "command"), {}};
  const auto arguments = object.find("arguments");
  if (arguments == object.end()) return request;
  if (!arguments->is_array()) throw DecodingError("The value for key 'arguments' is not a list of strings");
  for (const Json& argument : *arguments) {
    if (!argument.is_string()) throw DecodingError("The value for key 'arguments' is not a list of strings");
    request.arguments.push_back(argument.get<std::string>());
  }
  return request;
}

std::string encodeControlRequest(const ControlRequest& request) {
  return dumpJson({{"command", request.command}, {"arguments", request.arguments}});
}

ControlReply decodeControlReply(std::string_view bytes) {
  const Json object = parseJsonObject(bytes);
  if (!requiredBool(object, "ok")) return ControlReply::failure(requiredString(object, "error"));
  const auto result = object.find("result");
  return ControlReply::success(result == object.end() ? Json::object() : *result);
}

std::string encodeControlReply(const ControlReply& reply) {
  if (!reply.ok()) return dumpJson({{"ok", false}, {"error", reply.error}});
  std::string text = dumpJson({{"ok", true}, {"result", *reply.result}});
  if (text.size() <= ControlReply::kMaximumBytes) return text;
  return encodeControlReply(ControlReply::failure("The answer is too large"));
}

}  // namespace kestrel
