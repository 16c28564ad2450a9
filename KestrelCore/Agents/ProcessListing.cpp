#include "KestrelCore/Agents/ProcessListing.h"

#include <charconv>
#include <string>
#include <system_error>
#include <utility>

#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\v\f";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

std::optional<ProcessRow> parseLine(std::string_view line) {
  line = trimmed(line);
  const auto space = line.find(' ');
  const std::string_view number = line.substr(0, space);
  const char* const last = number.data() + number.size();
  ProcessRow row;
  const auto [end, error] = std::from_chars(number.data(), last, row.pid);
  if (error != std::errc() || end != last) return std::nullopt;
  if (space != std::string_view::npos) row.commandLine = line.substr(line.find_first_not_of(' ', space));
  return row;
}

}  // namespace

std::optional<std::vector<ProcessRow>> parseProcessListing(std::string_view text) {
  if (!isUtf8(text)) return std::nullopt;
  std::vector<ProcessRow> rows;
  while (!text.empty()) {
    const auto end = text.find('\n');
    if (auto row = parseLine(text.substr(0, end))) rows.push_back(std::move(*row));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return rows;
}

}  // namespace kestrel
