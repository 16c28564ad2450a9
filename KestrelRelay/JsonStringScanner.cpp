#include "KestrelRelay/JsonStringScanner.h"

#include <algorithm>

namespace kestrel {

namespace {

/// How far ahead the end of a string is looked for at once: text full of escapes is gone through again and
/// again.
constexpr std::size_t kSearchWindow = 512;

constexpr char32_t kReplacementCharacter = 0xFFFD;
constexpr bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string utf8(char32_t c) {
  const auto tail = [c](int shift) { return static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) return {static_cast<char>(c)};
  if (c < 0x800) return {static_cast<char>(0xC0 | (c >> 6)), tail(0)};
  if (c < 0x10000) return {static_cast<char>(0xE0 | (c >> 12)), tail(6), tail(0)};
  return {static_cast<char>(0xF0 | (c >> 18)), tail(12), tail(6), tail(0)};
}

}  // namespace

JsonStringScanner::JsonStringScanner(std::span<const std::string_view> paths)
    : paths_(paths), values_(paths.size()) {}

void JsonStringScanner::feed(std::string_view bytes) {
  for (std::size_t i = 0; i < bytes.size();) {
    switch (state_) {
      case State::beforeObject:
        feedBeforeObject(bytes[i++]);
        break;
      case State::structure:
        feedStructure(bytes[i++]);
        break;
      case State::string:
        feedString(bytes, i);
        break;
      case State::escape:
        feedEscape(bytes[i++]);
        break;
      case State::unicode:
        feedUnicode(bytes[i++]);
        break;
      case State::complete:
      case State::faulty:
        return;
    }
  }
}

void JsonStringScanner::feedBeforeObject(char c) {
  // The three bytes of a byte order mark are passed over like white space.
  constexpr std::string_view kIgnored = " \t\r\n\xEF\xBB\xBF";
  if (c == '{') {
    state_ = State::structure;
    open(true);
  } else if (kIgnored.find(c) == std::string_view::npos) {
    state_ = State::faulty;
  }
}

void JsonStringScanner::feedStructure(char c) {
  switch (c) {
    case '{':
      open(true);
      break;
    case '[':
      open(false);
      break;
    case '}':
    case ']':
      close();
      break;
    case '"':
      beginString();
      break;
    case ':':
      nameExpected_ = false;
      break;
    case ',':
      nameExpected_ = isTracked() && levels_[depth_ - 1].isObject;
      break;
    default:
      break;
  }
}

void JsonStringScanner::open(bool isObject) {
  ++depth_;
  nameExpected_ = isObject;
  if (!isTracked()) return;
  levels_[depth_ - 1].isObject = isObject;
  levels_[depth_ - 1].name.clear();
}

void JsonStringScanner::close() {
  --depth_;
  nameExpected_ = false;
  if (depth_ == 0) state_ = State::complete;
}

void JsonStringScanner::beginString() {
  state_ = State::string;
  capture_ = Capture::none;
  captured_.clear();
  tooLong_ = false;
  if (!isTracked() || !levels_[depth_ - 1].isObject) return;
  if (nameExpected_) {
    capture_ = Capture::name;
  } else if (const auto index = indexOfCurrentPath()) {
    capture_ = Capture::value;
    captureIndex_ = *index;
  }
}

void JsonStringScanner::feedString(std::string_view bytes, std::size_t& position) {
  const std::string_view window = bytes.substr(position, kSearchWindow);
  const std::size_t quote = std::min(window.find('"'), window.size());
  const std::size_t plain = std::min(window.substr(0, quote).find('\\'), quote);
  if (plain > 0) {
    endSurrogate();
    append(window.substr(0, plain));
  }
  position += plain;
  if (plain == window.size()) return;
  ++position;
  if (plain == quote) {
    endString();
  } else {
    state_ = State::escape;
  }
}

void JsonStringScanner::feedEscape(char c) {
  state_ = State::string;
  if (c == 'u') {
    state_ = State::unicode;
    unicodeValue_ = 0;
    unicodeDigits_ = 0;
    return;
  }
  endSurrogate();
  constexpr std::string_view kLetters = "bfnrt";
  constexpr std::string_view kMeanings = "\b\f\n\r\t";
  const std::size_t letter = kLetters.find(c);
  append({letter == std::string_view::npos ? &c : &kMeanings[letter], 1});
}

void JsonStringScanner::feedUnicode(char c) {
  const int digit = hexDigit(c);
  if (digit < 0) {
    state_ = State::faulty;
    return;
  }
  unicodeValue_ = unicodeValue_ * 16 + static_cast<char32_t>(digit);
  if (++unicodeDigits_ < 4) return;
  state_ = State::string;
  appendCodePoint(unicodeValue_);
}

void JsonStringScanner::appendCodePoint(char32_t codePoint) {
  if (highSurrogate_ != 0 && isLowSurrogate(codePoint)) {
    append(utf8(0x10000 + ((highSurrogate_ - 0xD800) << 10) + (codePoint - 0xDC00)));
    highSurrogate_ = 0;
    return;
  }
  endSurrogate();
  if (isHighSurrogate(codePoint)) {
    highSurrogate_ = codePoint;
  } else {
    append(utf8(isLowSurrogate(codePoint) ? kReplacementCharacter : codePoint));
  }
}

void JsonStringScanner::endSurrogate() {
  if (highSurrogate_ == 0) return;
  highSurrogate_ = 0;
  append(utf8(kReplacementCharacter));
}

void JsonStringScanner::append(std::string_view bytes) {
  if (capture_ == Capture::none || tooLong_) return;
  tooLong_ = captured_.size() + bytes.size() > kMaximumLength;
  if (!tooLong_) captured_ += bytes;
}

void JsonStringScanner::endString() {
  endSurrogate();
  state_ = State::structure;
  if (capture_ == Capture::name) {
    levels_[depth_ - 1].name = tooLong_ ? std::string() : captured_;
    nameExpected_ = false;
  } else if (capture_ == Capture::value && !tooLong_) {
    values_[captureIndex_] = captured_;
  }
}

std::optional<std::size_t> JsonStringScanner::indexOfCurrentPath() const {
  std::string path;
  for (std::size_t i = 0; i < depth_; ++i) {
    if (!levels_[i].isObject) return std::nullopt;
    if (i > 0) path += '.';
    path += levels_[i].name;
  }
  for (std::size_t i = 0; i < paths_.size(); ++i) {
    if (paths_[i] == path) return i;
  }
  return std::nullopt;
}

}  // namespace kestrel
