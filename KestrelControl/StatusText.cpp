#include "KestrelControl/StatusText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fmt/format.h>
#include <optional>
#include <sstream>

#include "KestrelCore/Agents/AgentState.h"
#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Control/Duration.h"
#include "KestrelCore/Power/HoldStatus.h"
#include "KestrelCore/Presentation/StatusLine.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

constexpr std::size_t kSessionsInStatus = 10;
constexpr const char* kUnknown = "unknown";

const Json& member(const Json& object, std::string_view key) {
  static const Json kNothing;
  const auto found = object.find(key);
  return found == object.end() ? kNothing : *found;
}

std::string row(std::string_view label, std::string_view text) {
  return fmt::format("{:<10}{}\n", label, text);
}

std::optional<Date> dateIn(const Json& object, std::string_view key) {
  const auto text = optionalString(object, key);
  return text ? parseISO8601(*text) : std::nullopt;
}

std::string textIn(const Json& object, std::string_view key) {
  return printable(optionalString(object, key).value_or(kUnknown));
}

/// "nominal (thermal zones)"; unknown without a source.
std::string withSource(const std::string& text, const std::optional<std::string>& source) {
  return source ? text + " (" + printable(*source) + ")" : kUnknown;
}

template <typename Enum>
std::optional<Enum> caseIn(const Json& object, std::string_view key) {
  const auto raw = optionalString(object, key);
  return raw ? fromRawValue<Enum>(*raw) : std::nullopt;
}

/// Absent when the hold has a state that this version does not know.
std::optional<HoldStatus> decodeHold(const Json& object) {
  const auto state = caseIn<HoldState>(object, "state");
  if (!state) return std::nullopt;
  HoldStatus hold{*state, dateIn(object, "since"), {}};
  for (const Json& entry : member(object, "by")) {
    const auto kind = caseIn<HoldKind>(entry, "kind");
    const auto evidence = caseIn<HoldEvidenceState>(entry, "state");
    if (!kind || !evidence) continue;
    hold.by.push_back({textIn(entry, "service"), *kind, *evidence,
                       printable(optionalString(entry, "detail").value_or(""))});
  }
  return hold;
}

std::string holdText(const Json& object, Date now) {
  const auto hold = decodeHold(object);
  if (!hold) return row("Hold:", kUnknown);
  if (hold->state == HoldState::none) return row("Hold:", "none");
  std::string text = row("Hold:", describeHold(*hold));
  if (hold->since) text += row("", "for " + formatDuration(now - *hold->since));
  for (const auto& entry : hold->by) {
    text += row("", entry.service + ", " + std::string(rawValue(entry.kind)) + ": " +
                        std::string(rawValue(entry.state)) +
                        (entry.detail.empty() ? "" : " (" + entry.detail + ")"));
  }
  return text;
}

std::string powerText(const Json& power) {
  std::string text = optionalBool(power, "isOnAC").value_or(true) ? "on AC" : "on battery";
  if (const auto percent = optionalInteger(power, "batteryPercent")) text += fmt::format(", {} %", *percent);
  if (optionalBool(power, "isCharging").value_or(false)) text += ", charging";
  const auto minutes = optionalInteger(power, "timeRemainingMinutes");
  if (minutes && *minutes >= 0) text += ", " + formatDuration(static_cast<double>(*minutes) * 60) + " left";
  if (optionalBool(power, "isLowPowerMode").value_or(false)) text += ", low-power mode";
  return withSource(text, optionalString(power, "source"));
}

std::string lidText(const Json& report) {
  const auto closed = optionalBool(report, "lidClosed");
  if (!closed) return kUnknown;
  return withSource(*closed ? "closed" : "open", optionalString(report, "lidSource"));
}

std::string sessionLine(const Json& session, Date now) {
  const auto agent = caseIn<AgentType>(session, "agentType");
  const auto state = caseIn<AgentState>(session, "state");
  const auto last = dateIn(session, "lastEventAt");
  const auto folder = optionalString(session, "cwd");
  const std::string age = last ? formatDuration(now - *last) + " ago" : kUnknown;
  return fmt::format("{:<13}{:<11}{:<17}{:<26}{}", agent ? displayName(*agent) : kUnknown,
                     state ? rawValue(*state) : kUnknown, age, textIn(session, "id"),
                     folder ? printable(*folder) : "");
}

/// Sessions as lines behind an indent, each without trailing blanks.
std::string sessionLines(const Json& sessions, Date now, std::string_view indent, std::size_t limit) {
  std::string text;
  for (std::size_t i = 0; i < std::min(sessions.size(), limit); ++i) {
    std::string line = std::string(indent) + sessionLine(sessions.at(i), now);
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  if (sessions.size() > limit) text += fmt::format("{}and {} more\n", indent, sessions.size() - limit);
  return text;
}

const Json& listIn(const Json& object, std::string_view key) {
  static const Json kEmpty = Json::array();
  const Json& list = member(object, key);
  return list.is_array() ? list : kEmpty;
}

std::string valueText(const Json& value) {
  if (value.is_null()) return "none";
  if (value.is_number_float()) return fmt::format("{}", value.get<double>());
  return printable(value.is_string() ? value.get<std::string>() : dumpJson(value));
}

/// The bytes of a control character at the start of a UTF-8 text; 0 when there is none.
std::size_t controlLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x20 || first == 0x7f) return 1;
  // U+0080 to U+009F.
  return first == 0xc2 && text.size() > 1 && static_cast<unsigned char>(text[1]) < 0xa0 ? 2 : 0;
}

}  // namespace

std::string statusText(const Json& report, Date now) {
  const Json& sessions = listIn(report, "sessions");
  std::string text = textIn(report, "statusDescription") + "\n";
  text += holdText(member(report, "hold"), now);
  text += row("Power:", powerText(member(report, "power")));
  text += row("Heat:", withSource(textIn(report, "thermalState"), optionalString(report, "thermalSource")));
  text += row("Lid:", lidText(report));
  text += row("Helper:", helperText(member(report, "helper"), now));
  text += row("Sessions:", sessions.empty() ? "none" : std::to_string(sessions.size()));
  text += sessionLines(sessions, now, std::string(10, ' '), kSessionsInStatus);
  const auto paused = dateIn(report, "pausedUntil");
  if (paused && *paused > now) text += row("Paused:", "for another " + formatDuration(*paused - now));
  return text;
}

std::string whyText(const Json& report) {
  const auto hold = decodeHold(member(report, "hold"));
  const bool holds = hold && hold->state != HoldState::none;
  std::string text = holds ? "Kestrel asks for it: " : "Kestrel does not: ";
  text += textIn(report, "statusDescription") + (holds ? " (" + describeHold(*hold) + ")" : "") + "\n";
  std::istringstream lines(optionalString(report, "systemAssertionsSummary").value_or(""));
  std::string list;
  for (std::string line; std::getline(lines, line);) list += "  " + printable(line) + "\n";
  return text +
         (list.empty() ? "The system does not tell who else does.\n" : "What the system knows of:\n" + list);
}

std::string helperText(const Json& helper, Date now) {
  if (!helper.is_object()) return kUnknown;
  if (!optionalBool(helper, "isHelperInstalled").value_or(false)) return "no helper answers";
  if (!optionalBool(helper, "isDeepHoldActive").value_or(false)) return "ready";
  const bool isOff = optionalBool(helper, "currentSystemSleepDisabled").value_or(false);
  const auto expiry = dateIn(helper, "leaseExpiresAt");
  return std::string(isOff ? "holds with the lid closed" : "holds, but sleep is not switched off") +
         (expiry ? ", for another " + formatDuration(*expiry - now) + " unless renewed" : "");
}

std::string sessionsText(const Json& report, Date now) {
  const Json& sessions = listIn(report, "sessions");
  return sessions.empty() ? "No sessions\n" : sessionLines(sessions, now, "", sessions.size());
}

std::string settingsText(const Json& settings) {
  std::string text;
  for (const auto& [key, value] : settings.items()) text += printable(key) + " = " + valueText(value) + "\n";
  return text;
}

std::string doctorText(const Json& report) {
  std::string text;
  for (const Json& capability : listIn(report, "capabilities")) {
    const auto word = [&](const char* key) {
      return printable(optionalString(capability, key).value_or(""));
    };
    text += fmt::format("{:<20}{:<13}{}\n", word("name"), word("state"), word("detail"));
    if (const std::string advice = word("advice"); !advice.empty())
      text += fmt::format("{:20}-> {}\n", "", advice);
  }
  return text;
}

std::string changeText(const Json& result) {
  if (const auto description = optionalString(result, "statusDescription"))
    return printable(*description) + "\n";
  std::string text;
  for (const auto& [key, value] : result.items()) text += valueText(value) + "\n";
  return text;
}

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t control = controlLength(text);
    result += control == 0 ? text[0] : '?';
    text.remove_prefix(std::max<std::size_t>(control, 1));
  }
  return result;
}

}  // namespace kestrel
