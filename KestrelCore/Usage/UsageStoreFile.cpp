#include "KestrelCore/Usage/UsageStoreFile.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>

#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Usage/JsonObjectStream.h"
#include "KestrelCore/Usage/UsageDecoder.h"
#include "KestrelCore/Usage/UsageJsonText.h"

namespace kestrel {
namespace {

constexpr std::size_t kPieceBytes = 256 * 1024;
/// With its key and its part of the sessions.
constexpr std::uint64_t kUsualBytesOfEvent = 512;
static_assert(JsonObjectStream::kPadding >= UsageDecoder::kPadding);

/// Fills a ledger from a file of either layout. Throws DecodingError.
class Loader {
 public:
  Loader(int descriptor, std::uint64_t fileBytes, UsageLedger& ledger)
      : stream_(descriptor), fileBytes_(fileBytes), ledger_(ledger) {}

  /// The schema version, if the file has one.
  std::optional<std::int64_t> load() {
    while (stream_.nextMember()) loadMember();
    for (const bool present : present_) {
      if (!present) throw DecodingError("The usage data lacks a member");
    }
    return schemaVersion_;
  }
  [[nodiscard]] std::uint64_t bytesRead() const { return stream_.bytesRead(); }

 private:
  void loadMember() {
    if (stream_.name() == "events") {
      begin(0, '[');
      ledger_.reserve(static_cast<std::size_t>(fileBytes_ / kUsualBytesOfEvent));
      eachPiece(
          [&](std::string_view piece) { decoder_.events(piece, [&](const auto& e) { loadEvent(e); }); });
    } else if (stream_.name() == "sessions") {
      begin(1, '{');
      eachPiece([&](std::string_view piece) {
        decoder_.sessions(piece, [&](auto id, const auto& record) { ledger_.loadSession(id, record); });
      });
    } else if (stream_.name() == "seenKeys") {
      begin(2, '[');
      eachPiece([&](std::string_view piece) {
        decoder_.strings(piece, [&](std::string_view key) { loadKey(key); });
      });
    } else {
      if (stream_.name() == "schemaVersion") takeVersion();
      eachPiece([&](std::string_view piece) { decoder_.check(piece); });
      checkScalar();
    }
  }
  void begin(std::size_t member, char kind) {
    if (present_[member] || stream_.kind() != kind)
      throw DecodingError("A member of the usage data is wrong");
    present_[member] = true;
  }
  template <typename Take>
  void eachPiece(const Take& take) {
    for (std::string_view piece; stream_.nextPiece(piece);) take(piece);
  }
  void takeVersion() {
    if (std::exchange(hasVersion_, true)) throw DecodingError("A member of the usage data is there twice");
    const std::string& text = stream_.scalar();
    std::int64_t version = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), version);
    if (error == std::errc() && end == text.data() + text.size()) schemaVersion_ = version;
  }
  /// A value that is no array or object is checked as the only element of one.
  void checkScalar() {
    if (stream_.kind() == '[' || stream_.kind() == '{') return;
    std::string text = "[" + stream_.scalar() + "]";
    text.reserve(text.size() + UsageDecoder::kPadding);
    decoder_.check(text);
  }
  void loadEvent(const UsageEvent& event) {
    if (!ledger_.loadEvent(event)) throw DecodingError("The usage data has sums that do not fit");
  }
  void loadKey(std::string_view key) {
    if (key.size() > 2 * UsageRows::kMaximumTextBytes)
      throw DecodingError("A key of the usage data is too long");
    ledger_.loadKey(key);
  }

  JsonObjectStream stream_;
  const std::uint64_t fileBytes_;
  UsageLedger& ledger_;
  UsageDecoder decoder_;
  std::array<bool, 3> present_{};
  bool hasVersion_ = false;
  std::optional<std::int64_t> schemaVersion_;
};

/// Collects text and hands it on in large pieces.
class PieceWriter {
 public:
  explicit PieceWriter(const std::function<void(std::string_view)>& append) : append_(append) {}

  template <typename Value>
  void element(const Value& value) {
    if (!isFirst_) text_.push_back(',');
    isFirst_ = false;
    appendJson(text_, value);
    if (text_.size() >= kPieceBytes) flush();
  }
  template <typename Value>
  void element(std::string_view name, const Value& value) {
    element(name);
    text_.push_back(':');
    appendJson(text_, value);
  }
  void raw(std::string_view text) {
    text_.append(text);
    isFirst_ = true;
  }
  void flush() {
    append_(text_);
    text_.clear();
  }

 private:
  const std::function<void(std::string_view)>& append_;
  std::string text_;
  bool isFirst_ = true;
};

}  // namespace

UsageStoreFile::Content UsageStoreFile::load(const std::filesystem::path& path) {
  Content content;
  const UniqueDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!descriptor) {
    content.found = errno == ENOENT || errno == ENOTDIR ? Found::nothing : Found::unusable;
  } else if (::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
             static_cast<std::uint64_t>(status.st_size) > kMaximumBytes) {
    content.found = Found::unusable;
  } else {
    try {
      Loader loader(descriptor.get(), static_cast<std::uint64_t>(status.st_size), content.ledger);
      const auto version = loader.load();
      content.found = version ? Found::schema : Found::legacy;
      content.schemaVersion = version.value_or(0);
      content.bytes = loader.bytesRead();
    } catch (const DecodingError&) {
      content.found = Found::unusable;
      content.ledger = UsageLedger();
    }
  }
  return content;
}

void UsageStoreFile::save(const UsageLedger& ledger, const std::function<void(std::string_view)>& append) {
  const UsageRows& rows = ledger.rows();
  PieceWriter out(append);
  out.raw(R"({"schemaVersion":1,"events":[)");
  UsageEvent event;
  for (auto row = rows.eventFrom(0); row; row = rows.eventFrom(rows.after(*row))) {
    rows.read(*row, event);
    out.element(event);
  }
  out.raw(R"(],"sessions":{)");
  ledger.sessions().forEach([&](std::string_view id, const auto& record) { out.element(id, record); });
  out.raw(R"(},"seenKeys":[)");
  for (auto row = rows.keyFrom(0); row; row = rows.keyFrom(rows.after(*row))) {
    out.element(std::string_view(rows.key(*row)));
  }
  out.raw("]}");
  out.flush();
}

}  // namespace kestrel
