#include "KestrelCore/Usage/UsageRows.h"

#include <array>
#include <cstring>

namespace kestrel {

/// What every row begins with. The rest of an event: its varying parts in the order in which they are read.
struct UsageRows::Head {
  std::uint32_t bytes = 0;
  std::uint16_t present = 0;
  std::uint8_t agent = 0;
  std::uint8_t flags = 0;
  double timestamp = 0;
};

namespace {

// Positions count units of 8 bytes, so that 32 bits reach 32 GiB.
constexpr std::size_t kUnit = 8;
constexpr unsigned kBlockBits = 15;
constexpr std::size_t kBlockUnits = std::size_t{1} << kBlockBits;

constexpr std::uint8_t kBareKey = 1;
constexpr std::uint8_t kKeySeen = 2;

constexpr std::array kCounts = {&UsageEvent::inputTokens,     &UsageEvent::outputTokens,
                                &UsageEvent::cachedTokens,    &UsageEvent::cacheWriteTokens,
                                &UsageEvent::reasoningTokens, &UsageEvent::totalTokens,
                                &UsageEvent::contextWindow};
constexpr std::array kAmounts = {&UsageEvent::costEstimateUSD, &UsageEvent::quotaRemainingPercent};
constexpr unsigned kTurnBit = 0;
constexpr unsigned kModelBit = 1;
constexpr unsigned kFirstCountBit = 2;
constexpr unsigned kFirstAmountBit = kFirstCountBit + kCounts.size();

bool has(std::uint16_t present, unsigned bit) {
  return (present >> bit & 1U) != 0;
}

void putNumber(std::string& row, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) row.push_back(static_cast<char>(value | 0x80));
  row.push_back(static_cast<char>(value));
}
/// Small for small numbers of either sign.
void putSigned(std::string& row, std::int64_t value) {
  putNumber(row, static_cast<std::uint64_t>(value) << 1 ^ static_cast<std::uint64_t>(value >> 63));
}
void putText(std::string& row, std::string_view text) {
  putNumber(row, text.size());
  row.append(text);
}
template <typename Value>
void putBytes(std::string& row, const Value& value) {
  row.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void assign(std::optional<std::string>& target, std::string_view text) {
  if (target) {
    target->assign(text);
  } else {
    target.emplace(text);
  }
}

std::uint16_t presence(const UsageEvent& event) {
  unsigned present = unsigned{event.turnId.has_value()} << kTurnBit;
  present |= unsigned{event.modelId.has_value()} << kModelBit;
  for (unsigned i = 0; i < kCounts.size(); ++i) {
    present |= unsigned{(event.*kCounts[i]).has_value()} << (kFirstCountBit + i);
  }
  for (unsigned i = 0; i < kAmounts.size(); ++i) {
    present |= unsigned{(event.*kAmounts[i]).has_value()} << (kFirstAmountBit + i);
  }
  return static_cast<std::uint16_t>(present);
}

}  // namespace

/// Takes the parts of a row in their order.
class UsageRows::Reader {
 public:
  explicit Reader(const char* row) : next_(row + sizeof(Head)) {}

  std::uint64_t number() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
      const auto byte = static_cast<unsigned char>(*next_++);
      value |= std::uint64_t{byte & 0x7FU} << shift;
      if (byte < 0x80) return value;
    }
  }
  std::uint32_t stringNumber() { return static_cast<std::uint32_t>(number()); }
  std::int64_t signedNumber() {
    const std::uint64_t value = number();
    return static_cast<std::int64_t>(value >> 1 ^ (~(value & 1) + 1));
  }
  std::string_view text() {
    const auto length = static_cast<std::size_t>(number());
    next_ += length;
    return {next_ - length, length};
  }
  double amount() {
    double value = 0;
    std::memcpy(&value, next_, sizeof value);
    next_ += sizeof value;
    return value;
  }

 private:
  const char* next_;
};

std::uint32_t UsageRows::Strings::number(std::string_view text) {
  if (const auto known = numbers_.find(text); known != numbers_.end()) return known->second;
  const auto added = numbers_.emplace(text, static_cast<std::uint32_t>(texts_.size())).first;
  texts_.push_back(&added->first);
  return added->second;
}

UsageRows::Position UsageRows::append(const UsageEvent& event, bool keyIsSeen) {
  scratch_.clear();
  const Head head{.present = presence(event),
                  .agent = static_cast<std::uint8_t>(event.agentType),
                  .flags = keyIsSeen ? kKeySeen : std::uint8_t{0},
                  .timestamp = event.timestamp.secondsSinceReferenceDate()};
  putBytes(scratch_, head);
  putNumber(scratch_, strings_.number(event.sessionId));
  if (event.turnId) putText(scratch_, *event.turnId);
  putNumber(scratch_, strings_.number(event.source));
  if (event.modelId) putNumber(scratch_, strings_.number(*event.modelId));
  putText(scratch_, event.id);
  for (const auto count : kCounts) {
    if (event.*count) putSigned(scratch_, *(event.*count));
  }
  for (const auto amount : kAmounts) {
    if (event.*amount) putBytes(scratch_, *(event.*amount));
  }
  ++eventCount_;
  return store(scratch_);
}

UsageRows::Position UsageRows::appendKey(std::string_view key) {
  scratch_.clear();
  putBytes(scratch_, Head{.flags = kBareKey | kKeySeen});
  putText(scratch_, key);
  return store(scratch_);
}

UsageRows::Position UsageRows::store(std::string_view row) {
  const std::size_t units = (row.size() + kUnit - 1) / kUnit;
  if (blocks_.empty() || used_.back() + units > kBlockUnits) {
    blocks_.emplace_back(new char[kBlockUnits * kUnit]);
    used_.push_back(0);
  }
  const Position position = end();
  char* const target = blocks_.back().get() + used_.back() * kUnit;
  std::memcpy(target, row.data(), row.size());
  const auto bytes = static_cast<std::uint32_t>(row.size());
  std::memcpy(target + offsetof(Head, bytes), &bytes, sizeof bytes);
  used_.back() += static_cast<std::uint32_t>(units);
  return position;
}

UsageRows::Position UsageRows::end() const {
  if (blocks_.empty()) return 0;
  return static_cast<Position>((blocks_.size() - 1) << kBlockBits) + used_.back();
}

UsageRows::Position UsageRows::after(Position position) const {
  return position + static_cast<Position>((head(position).bytes + kUnit - 1) / kUnit);
}

const char* UsageRows::at(Position position) const {
  return blocks_[position >> kBlockBits].get() + (position & (kBlockUnits - 1)) * kUnit;
}

UsageRows::Head UsageRows::head(Position position) const {
  Head head;
  std::memcpy(&head, at(position), sizeof head);
  return head;
}

std::optional<UsageRows::Position> UsageRows::rowFrom(Position position, bool keys) const {
  for (position = skipBlockEnd(position); position < end(); position = skipBlockEnd(after(position))) {
    const std::uint8_t flags = head(position).flags;
    if (keys ? (flags & kKeySeen) != 0 : (flags & kBareKey) == 0) return position;
  }
  return std::nullopt;
}

void UsageRows::read(Position position, UsageEvent& event) const {
  const Head head = this->head(position);
  Reader reader(at(position));
  event.agentType = static_cast<AgentType>(head.agent);
  event.timestamp = Date::sinceReferenceDate(head.timestamp);
  event.sessionId = strings_.text(reader.stringNumber());
  if (has(head.present, kTurnBit)) {
    assign(event.turnId, reader.text());
  } else {
    event.turnId.reset();
  }
  event.source = strings_.text(reader.stringNumber());
  if (has(head.present, kModelBit)) {
    assign(event.modelId, strings_.text(reader.stringNumber()));
  } else {
    event.modelId.reset();
  }
  event.id = reader.text();
  for (unsigned i = 0; i < kCounts.size(); ++i) {
    event.*kCounts[i] =
        has(head.present, kFirstCountBit + i) ? std::optional(reader.signedNumber()) : std::nullopt;
  }
  for (unsigned i = 0; i < kAmounts.size(); ++i) {
    event.*kAmounts[i] =
        has(head.present, kFirstAmountBit + i) ? std::optional(reader.amount()) : std::nullopt;
  }
}

Date UsageRows::timestamp(Position position) const {
  return Date::sinceReferenceDate(head(position).timestamp);
}

std::string UsageRows::key(Position position) const {
  if ((head(position).flags & kBareKey) != 0) return std::string(Reader(at(position)).text());
  UsageEvent event;
  read(position, event);
  return event.deduplicationKey();
}

bool UsageRows::hasKey(Position position, std::string_view key) const {
  const Head head = this->head(position);
  Reader reader(at(position));
  if ((head.flags & kBareKey) != 0) return reader.text() == key;
  // The common kind without making its text: agent, session and turn, joined by "_".
  const std::string_view agent = rawValue(static_cast<AgentType>(head.agent));
  const std::string_view session = strings_.text(reader.stringNumber());
  const std::string_view turn = has(head.present, kTurnBit) ? reader.text() : std::string_view();
  if (turn.empty()) return this->key(position) == key;
  return key.size() == agent.size() + session.size() + turn.size() + 2 && key.starts_with(agent) &&
         key[agent.size()] == '_' && key.substr(agent.size() + 1).starts_with(session) &&
         key[agent.size() + 1 + session.size()] == '_' && key.ends_with(turn);
}

bool UsageRows::hasTurn(Position position, AgentType agent, std::string_view turnId) const {
  const Head head = this->head(position);
  if (head.agent != static_cast<std::uint8_t>(agent) || !has(head.present, kTurnBit)) return false;
  Reader reader(at(position));
  (void)reader.stringNumber();
  return reader.text() == turnId;
}

bool UsageRows::keyIsSeen(Position position) const {
  return (head(position).flags & kKeySeen) != 0;
}

void UsageRows::markKeySeen(Position position) {
  const auto flags = static_cast<char>(head(position).flags | kKeySeen);
  char* const block = blocks_[position >> kBlockBits].get();
  block[(position & (kBlockUnits - 1)) * kUnit + offsetof(Head, flags)] = flags;
}

UsageRows::Position UsageRows::skipBlockEnd(Position position) const {
  const std::size_t block = position >> kBlockBits;
  if (block + 1 >= blocks_.size() || (position & (kBlockUnits - 1)) < used_[block]) return position;
  return static_cast<Position>((block + 1) << kBlockBits);
}

}  // namespace kestrel
