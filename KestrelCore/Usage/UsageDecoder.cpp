#include "KestrelCore/Usage/UsageDecoder.h"

#include <array>
#include <cmath>
#include <cstring>
#include <optional>
#include <simdjson.h>
#include <string>

#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {
namespace {

namespace ondemand = simdjson::ondemand;

static_assert(UsageDecoder::kPadding >= simdjson::SIMDJSON_PADDING);

[[noreturn]] void fail() {
  throw DecodingError("The usage data is not as it should be");
}

template <typename Value, typename Result>
Value require(Result result) {
  Value value{};
  if (static_cast<Result&&>(result).get(value) != simdjson::SUCCESS) fail();
  return value;
}

/// Known members, in the order in which they are usually written.
template <std::size_t kCount>
class Members {
 public:
  constexpr explicit Members(std::array<std::string_view, kCount> names) : names_(names) {}

  /// The index of the field's name; kCount for any other. `expected` is tried first.
  std::size_t find(ondemand::field& field, std::size_t expected) const {
    const ondemand::raw_json_string raw = field.key();
    for (std::size_t i = 0; i < kCount; ++i) {
      const std::size_t index = (expected + i) % kCount;
      if (raw.unsafe_is_equal(names_[index])) return index;
    }
    const auto unescaped = require<std::string_view>(field.unescaped_key());
    for (std::size_t i = 0; i < kCount; ++i) {
      if (names_[i] == unescaped) return i;
    }
    return kCount;
  }

 private:
  std::array<std::string_view, kCount> names_;
};

constexpr Members kEventMembers(std::to_array<std::string_view>(
    {"id", "agentType", "sessionId", "turnId", "modelId", "inputTokens", "outputTokens", "cachedTokens",
     "cacheWriteTokens", "reasoningTokens", "totalTokens", "contextWindow", "costEstimateUSD",
     "quotaRemainingPercent", "timestamp", "source"}));
constexpr std::size_t kEventMemberCount = 16;
constexpr unsigned kRequiredEventMembers = 1U << 0 | 1U << 1 | 1U << 2 | 1U << 14 | 1U << 15;

constexpr Members kSessionMembers(std::to_array<std::string_view>(
    {"id", "agentType", "modelId", "startedAt", "lastActiveAt", "durationSeconds", "totalTokens",
     "inputTokens", "outputTokens", "cachedTokens", "cacheWriteTokens", "reasoningTokens", "estimatedCostUSD",
     "contextWindow", "quotaRemainingPercent"}));
constexpr std::size_t kSessionMemberCount = 15;
constexpr unsigned kRequiredSessionMembers = 0b1111'1111'1011;

bool isNull(ondemand::value& value) {
  return require<bool>(value.is_null());
}

/// Without a copy where the text has no escapes; the structure of the JSON is known to be sound by then.
std::string_view text(ondemand::value& value) {
  const std::string_view token = value.raw_json_token();
  if (token.empty() || token.front() != '"') fail();
  if (token.find('\\') != std::string_view::npos) return require<std::string_view>(value.get_string());
  return token.substr(1, token.rfind('"') - 1);
}
double amount(ondemand::value& value) {
  const auto number = require<double>(value.get_double());
  if (!std::isfinite(number)) fail();
  return number;
}
std::int64_t count(ondemand::value& value) {
  std::int64_t number = 0;
  if (value.get_int64().get(number) == simdjson::SUCCESS) return number;
  constexpr double kLimit = 9'223'372'036'854'775'808.0;
  const double whole = amount(value);
  if (!(whole >= -kLimit && whole < kLimit) || whole != std::trunc(whole)) fail();
  return static_cast<std::int64_t>(whole);
}
AgentType agent(ondemand::value& value) {
  const auto type = fromRawValue<AgentType>(text(value));
  if (!type) fail();
  return *type;
}
Date date(ondemand::value& value) {
  return Date::sinceReferenceDate(amount(value));
}

void set(std::optional<std::string>& target, ondemand::value& value) {
  if (isNull(value)) return target.reset();
  if (!target) target.emplace();
  target->assign(text(value));
}
void set(std::optional<std::int64_t>& target, ondemand::value& value) {
  target = isNull(value) ? std::nullopt : std::optional(count(value));
}
void set(std::optional<double>& target, ondemand::value& value) {
  target = isNull(value) ? std::nullopt : std::optional(amount(value));
}

/// Reads all of a value that is not wanted, so that nothing malformed can hide in it.
void check(ondemand::value value, std::size_t depth = 1) {
  if (depth > kMaximumJsonDepth) fail();
  switch (require<ondemand::json_type>(value.type())) {
    case ondemand::json_type::object:
      for (auto field : require<ondemand::object>(value.get_object())) {
        (void)require<std::string_view>(field.unescaped_key());
        check(require<ondemand::value>(field.value()), depth + 1);
      }
      break;
    case ondemand::json_type::array:
      for (auto element : require<ondemand::array>(value.get_array())) {
        check(require<ondemand::value>(element), depth + 1);
      }
      break;
    case ondemand::json_type::string:
      (void)require<std::string_view>(value.get_string());
      break;
    case ondemand::json_type::number:
      (void)require<double>(value.get_double());
      break;
    case ondemand::json_type::boolean:
      (void)require<bool>(value.get_bool());
      break;
    case ondemand::json_type::null:
      if (!isNull(value)) fail();
      break;
  }
}

/// Hands each known member to `set(index, value)`, and sees to the others and to what is required.
template <typename MemberTable, typename Set>
void readObject(ondemand::object object, const MemberTable& members, std::size_t memberCount,
                unsigned required, const Set& set) {
  unsigned seen = 0;
  std::size_t expected = 0;
  for (auto result : object) {
    auto field = require<ondemand::field>(std::move(result));
    const std::size_t index = members.find(field, expected);
    if (index == memberCount) {
      check(field.value());
      continue;
    }
    if ((seen >> index & 1U) != 0) fail();
    seen |= 1U << index;
    expected = index + 1;
    set(index, field.value());
  }
  if ((seen & required) != required) fail();
}

void clearOptionals(UsageEvent& event) {
  event.turnId.reset();
  event.modelId.reset();
  event.inputTokens = event.outputTokens = event.cachedTokens = std::nullopt;
  event.cacheWriteTokens = event.reasoningTokens = event.totalTokens = event.contextWindow = std::nullopt;
  event.costEstimateUSD = event.quotaRemainingPercent = std::nullopt;
}

void setEventMember(UsageEvent& event, std::size_t index, ondemand::value& value) {
  switch (index) {
    case 0:
      event.id.assign(text(value));
      break;
    case 1:
      event.agentType = agent(value);
      break;
    case 2:
      event.sessionId.assign(text(value));
      break;
    case 3:
      set(event.turnId, value);
      break;
    case 4:
      set(event.modelId, value);
      break;
    case 5:
      set(event.inputTokens, value);
      break;
    case 6:
      set(event.outputTokens, value);
      break;
    case 7:
      set(event.cachedTokens, value);
      break;
    case 8:
      set(event.cacheWriteTokens, value);
      break;
    case 9:
      set(event.reasoningTokens, value);
      break;
    case 10:
      set(event.totalTokens, value);
      break;
    case 11:
      set(event.contextWindow, value);
      break;
    case 12:
      set(event.costEstimateUSD, value);
      break;
    case 13:
      set(event.quotaRemainingPercent, value);
      break;
    case 14:
      event.timestamp = date(value);
      break;
    default:
      event.source.assign(text(value));
      break;
  }
}

void readEvent(ondemand::object object, UsageEvent& event) {
  clearOptionals(event);
  readObject(object, kEventMembers, kEventMemberCount, kRequiredEventMembers,
             [&](std::size_t index, ondemand::value value) { setEventMember(event, index, value); });
}

void setSessionMember(SessionUsageRecord& record, std::size_t index, ondemand::value& value) {
  switch (index) {
    case 0:
      record.id.assign(text(value));
      break;
    case 1:
      record.agentType = agent(value);
      break;
    case 2:
      set(record.modelId, value);
      break;
    case 3:
      record.startedAt = date(value);
      break;
    case 4:
      record.lastActiveAt = date(value);
      break;
    case 5:
      record.durationSeconds = amount(value);
      break;
    case 6:
      record.totalTokens = count(value);
      break;
    case 7:
      record.inputTokens = count(value);
      break;
    case 8:
      record.outputTokens = count(value);
      break;
    case 9:
      record.cachedTokens = count(value);
      break;
    case 10:
      record.cacheWriteTokens = count(value);
      break;
    case 11:
      record.reasoningTokens = count(value);
      break;
    case 12:
      set(record.estimatedCostUSD, value);
      break;
    case 13:
      set(record.contextWindow, value);
      break;
    default:
      set(record.quotaRemainingPercent, value);
      break;
  }
}

}  // namespace

struct UsageDecoder::State {
  ondemand::document& parse(std::string_view text) {
    if (parser.iterate(text.data(), text.size(), text.size() + kPadding).get(document) != simdjson::SUCCESS) {
      fail();
    }
    return document;
  }
  /// Nothing may follow the value that was read.
  void finish() {
    if (document.current_location().error() != simdjson::OUT_OF_BOUNDS) fail();
  }

  ondemand::parser parser;
  ondemand::document document;
  UsageEvent event;
};

UsageDecoder::UsageDecoder() : state_(std::make_unique<State>()) {}
UsageDecoder::~UsageDecoder() = default;

const UsageEvent& UsageDecoder::event(std::string_view text) {
  readEvent(require<ondemand::object>(state_->parse(text).get_object()), state_->event);
  state_->finish();
  return state_->event;
}

void UsageDecoder::events(std::string_view text, const std::function<void(const UsageEvent&)>& take) {
  for (auto element : require<ondemand::array>(state_->parse(text).get_array())) {
    readEvent(require<ondemand::object>(element.get_object()), state_->event);
    take(state_->event);
  }
  state_->finish();
}

void UsageDecoder::sessions(std::string_view text,
                            const std::function<void(std::string_view, const SessionUsageRecord&)>& take) {
  for (auto result : require<ondemand::object>(state_->parse(text).get_object())) {
    auto field = require<ondemand::field>(std::move(result));
    const std::string sessionId(require<std::string_view>(field.unescaped_key()));
    SessionUsageRecord record;
    readObject(require<ondemand::object>(field.value().get_object()), kSessionMembers, kSessionMemberCount,
               kRequiredSessionMembers,
               [&](std::size_t index, ondemand::value value) { setSessionMember(record, index, value); });
    take(sessionId, record);
  }
  state_->finish();
}

void UsageDecoder::strings(std::string_view text, const std::function<void(std::string_view)>& take) {
  for (auto element : require<ondemand::array>(state_->parse(text).get_array())) {
    auto value = require<ondemand::value>(element);
    take(kestrel::text(value));
  }
  state_->finish();
}

void UsageDecoder::check(std::string_view text) {
  kestrel::check(require<ondemand::value>(state_->parse(text).get_value()));
  state_->finish();
}

}  // namespace kestrel
