#include "KestrelCore/Support/PrivateFolder.h"

#include <cerrno>
#include <sys/stat.h>

namespace kestrel {

int createPrivateFolders(const std::filesystem::path& folder) {
  struct stat status {};
  if (folder.empty()) return 0;
  if (::stat(folder.c_str(), &status) == 0) return S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
  if (const int error = createPrivateFolders(folder.parent_path()); error != 0) return error;
  return ::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST ? 0 : errno;
}

}  // namespace kestrel
