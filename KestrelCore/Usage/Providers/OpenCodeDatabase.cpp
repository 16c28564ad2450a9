#include "KestrelCore/Usage/Providers/OpenCodeDatabase.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <sqlite3.h>
#include <string_view>
#include <utility>

namespace kestrel {
namespace {

constexpr const char* kNewestMessages =
    "SELECT id, session_id, time_created, data\n"
    "FROM message\n"
    "WHERE data LIKE '%\"tokens\"%'\n"
    "ORDER BY time_created DESC LIMIT 25;";
constexpr const char* kOneMessage = "SELECT id, session_id, time_created, data FROM message WHERE id = ?1;";

/// A file system for databases that were left with a log of changes and no index to it, as after a restart of
/// the machine. The library would make an index beside them; told that it is alone, it keeps one in memory
/// instead. So here everything is opened for reading only, and locks are granted without being taken.
constexpr const char* kBystander = "kestrel-bystander";

int openForReading(sqlite3_vfs* bystander, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  auto* system = static_cast<sqlite3_vfs*>(bystander->pAppData);
  flags = (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) | SQLITE_OPEN_READONLY;
  const int result = system->xOpen(system, name, file, flags, outFlags);
  if (result != SQLITE_OK || (flags & SQLITE_OPEN_MAIN_DB) == 0) return result;
  static const sqlite3_io_methods withoutLocks = [file] {
    sqlite3_io_methods methods = *file->pMethods;
    methods.xLock = [](sqlite3_file*, int) { return SQLITE_OK; };
    methods.xUnlock = [](sqlite3_file*, int) { return SQLITE_OK; };
    methods.xCheckReservedLock = [](sqlite3_file*, int* isReserved) {
      *isReserved = 0;
      return SQLITE_OK;
    };
    return methods;
  }();
  file->pMethods = &withoutLocks;
  return result;
}

bool registerBystander() {
  static sqlite3_vfs bystander;
  sqlite3_vfs* system = sqlite3_vfs_find(nullptr);
  if (system == nullptr) return false;
  bystander = *system;
  bystander.pNext = nullptr;
  bystander.zName = kBystander;
  bystander.pAppData = system;
  bystander.xOpen = openForReading;
  bystander.xDelete = [](sqlite3_vfs*, const char*, int) { return SQLITE_READONLY; };
  return sqlite3_vfs_register(&bystander, 0) == SQLITE_OK;
}

struct Closer {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Closer>;
using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

std::string asUri(std::string_view path) {
  std::string uri = "file://";
  for (const char c : path) {
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                         std::string_view("/-_.").find(c) != std::string_view::npos;
    uri += isPlain ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return uri;
}

Database open(const std::string& path, bool hasLog) {
  const bool hasIndex = stampOf(path + "-shm").has_value();
  std::string uri = asUri(path);
  if (!hasLog) {
    uri += "?immutable=1";
  } else if (hasIndex) {
    // OpenCode may be at work, and the index is what it tells others by; but it is its own to change.
    uri += "?readonly_shm=1";
  } else {
    static const bool isRegistered = registerBystander();
    if (!isRegistered) return nullptr;
    uri += fmt::format("?vfs={}", kBystander);
  }
  sqlite3* handle = nullptr;
  const int result = sqlite3_open_v2(uri.c_str(), &handle, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
  Database database(handle);
  if (result != SQLITE_OK) return nullptr;
  sqlite3_db_config(handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  if (hasLog && !hasIndex) sqlite3_exec(handle, "PRAGMA locking_mode=EXCLUSIVE;", nullptr, nullptr, nullptr);
  return database;
}

Statement prepare(sqlite3* database, const char* text) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, text, -1, &statement, nullptr);
  return Statement(statement);
}

std::optional<std::string> text(sqlite3_stmt* statement, int column) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  const int size = sqlite3_column_bytes(statement, column);
  if (bytes == nullptr || size > OpenCodeDatabase::kMaximumDataBytes) return std::nullopt;
  return std::string(bytes, static_cast<std::size_t>(size));
}

/// Steps to the end and takes the complete rows. False when it did not get there.
template <typename Take>
bool run(sqlite3_stmt* statement, Take take) {
  if (statement == nullptr) return false;
  int result = SQLITE_ROW;
  while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
    auto id = text(statement, 0);
    auto session = text(statement, 1);
    if (!id || !session || sqlite3_column_type(statement, 3) == SQLITE_NULL) continue;
    take(std::move(*id), std::move(*session), sqlite3_column_int64(statement, 2));
  }
  return result == SQLITE_DONE;
}

}  // namespace

std::optional<std::vector<OpenCodeDatabase::Row>> OpenCodeDatabase::read(
    const std::function<bool(const std::string& id)>& isKnown, const std::vector<std::string>& ids) {
  const Stamps stamps{stampOf(path_), stampOf(path_ + "-wal")};
  if (!stamps.database) return std::nullopt;
  const bool isUnchanged = stamps == lastRead_;
  if (isUnchanged && isSettled_) return std::nullopt;
  const Database database = open(path_, stamps.log && stamps.log->size > 0);
  if (database == nullptr) return std::nullopt;

  std::vector<Row> rows;
  const Statement newest = prepare(database.get(), kNewestMessages);
  bool isWhole = run(newest.get(), [&](std::string id, std::string session, std::int64_t time) {
    if (isKnown(id)) return;
    rows.push_back({std::move(id), std::move(session), time, text(newest.get(), 3).value_or("")});
  });
  const Statement one = prepare(database.get(), kOneMessage);
  const auto newestEnd = rows.size();
  for (std::size_t i = 0; i < ids.size() && isWhole; ++i) {
    const auto newestRows =
        std::ranges::subrange(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(newestEnd));
    if (std::ranges::find(newestRows, ids[i], &Row::id) != newestRows.end()) continue;
    sqlite3_reset(one.get());
    sqlite3_bind_text(one.get(), 1, ids[i].data(), static_cast<int>(ids[i].size()), SQLITE_TRANSIENT);
    isWhole = run(one.get(), [&](std::string id, std::string session, std::int64_t time) {
      rows.push_back({std::move(id), std::move(session), time, text(one.get(), 3).value_or("")});
    });
  }
  if (!isWhole) return std::nullopt;
  isSettled_ = isUnchanged;
  lastRead_ = stamps;
  return rows;
}

}  // namespace kestrel
