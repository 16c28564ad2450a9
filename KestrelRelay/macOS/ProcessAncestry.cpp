#include "KestrelRelay/ProcessAncestry.h"

#include <libproc.h>

namespace kestrel {

namespace {

std::optional<proc_bsdinfo> information(std::int32_t pid) {
  proc_bsdinfo info{};
  if (proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) != sizeof info) return std::nullopt;
  return info;
}

}  // namespace

std::optional<std::string> processName(std::int32_t pid) {
  const auto info = information(pid);
  if (!info) return std::nullopt;
  return std::string(info->pbi_comm);
}

std::optional<std::int32_t> parentProcess(std::int32_t pid) {
  const auto info = information(pid);
  if (!info) return std::nullopt;
  return static_cast<std::int32_t>(info->pbi_ppid);
}

}  // namespace kestrel
