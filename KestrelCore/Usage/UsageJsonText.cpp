#include "KestrelCore/Usage/UsageJsonText.h"

#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <optional>

namespace kestrel {
namespace {

void appendValue(std::string& out, const std::string& text) {
  appendJson(out, std::string_view(text));
}
void appendValue(std::string& out, AgentType agent) {
  appendJson(out, rawValue(agent));
}
void appendValue(std::string& out, std::int64_t number) {
  const fmt::format_int text(number);
  out.append(text.data(), text.size());
}
void appendValue(std::string& out, double number) {
  fmt::format_to(std::back_inserter(out), "{}", number);
}
void appendValue(std::string& out, Date date) {
  appendValue(out, date.secondsSinceReferenceDate());
}

/// `lead` is all that stands before the value: `,"key":`.
template <typename Value>
void appendMember(std::string& out, std::string_view lead, const Value& value) {
  out.append(lead);
  appendValue(out, value);
}
template <typename Value>
void appendMember(std::string& out, std::string_view lead, const std::optional<Value>& value) {
  if (value) appendMember(out, lead, *value);
}

void appendEscaped(std::string& out, char c) {
  constexpr std::string_view kPlain = "\"\\\b\f\n\r\t";
  constexpr std::string_view kLetters = "\"\\bfnrt";
  if (const auto index = kPlain.find(c); index != std::string_view::npos) {
    out.push_back('\\');
    out.push_back(kLetters[index]);
  } else {
    fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(c));
  }
}

bool needsEscape(char c) {
  return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
}

}  // namespace

void appendJson(std::string& out, std::string_view text) {
  out.push_back('"');
  std::size_t done = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!needsEscape(text[i])) continue;
    out.append(text, done, i - done);
    appendEscaped(out, text[i]);
    done = i + 1;
  }
  out.append(text, done);
  out.push_back('"');
}

void appendJson(std::string& out, const UsageEvent& event) {
  appendMember(out, R"({"id":)", event.id);
  appendMember(out, R"(,"agentType":)", event.agentType);
  appendMember(out, R"(,"sessionId":)", event.sessionId);
  appendMember(out, R"(,"turnId":)", event.turnId);
  appendMember(out, R"(,"modelId":)", event.modelId);
  appendMember(out, R"(,"inputTokens":)", event.inputTokens);
  appendMember(out, R"(,"outputTokens":)", event.outputTokens);
  appendMember(out, R"(,"cachedTokens":)", event.cachedTokens);
  appendMember(out, R"(,"cacheWriteTokens":)", event.cacheWriteTokens);
  appendMember(out, R"(,"reasoningTokens":)", event.reasoningTokens);
  appendMember(out, R"(,"totalTokens":)", event.totalTokens);
  appendMember(out, R"(,"contextWindow":)", event.contextWindow);
  appendMember(out, R"(,"costEstimateUSD":)", event.costEstimateUSD);
  appendMember(out, R"(,"quotaRemainingPercent":)", event.quotaRemainingPercent);
  appendMember(out, R"(,"timestamp":)", event.timestamp);
  appendMember(out, R"(,"source":)", event.source);
  out.push_back('}');
}

void appendJson(std::string& out, const SessionUsageRecord& record) {
  appendMember(out, R"({"id":)", record.id);
  appendMember(out, R"(,"agentType":)", record.agentType);
  appendMember(out, R"(,"modelId":)", record.modelId);
  appendMember(out, R"(,"startedAt":)", record.startedAt);
  appendMember(out, R"(,"lastActiveAt":)", record.lastActiveAt);
  appendMember(out, R"(,"durationSeconds":)", record.durationSeconds);
  appendMember(out, R"(,"totalTokens":)", record.totalTokens);
  appendMember(out, R"(,"inputTokens":)", record.inputTokens);
  appendMember(out, R"(,"outputTokens":)", record.outputTokens);
  appendMember(out, R"(,"cachedTokens":)", record.cachedTokens);
  appendMember(out, R"(,"cacheWriteTokens":)", record.cacheWriteTokens);
  appendMember(out, R"(,"reasoningTokens":)", record.reasoningTokens);
  appendMember(out, R"(,"estimatedCostUSD":)", record.estimatedCostUSD);
  appendMember(out, R"(,"contextWindow":)", record.contextWindow);
  appendMember(out, R"(,"quotaRemainingPercent":)", record.quotaRemainingPercent);
  out.push_back('}');
}

}  // namespace kestrel
