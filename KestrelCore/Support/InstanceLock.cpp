#include "KestrelCore/Support/InstanceLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

#include "KestrelCore/Support/AtomicFile.h"

namespace kestrel {

InstanceLock::Outcome InstanceLock::acquire(const std::filesystem::path& path,
                                            const AtomicFileWriter& files) {
  if (!files.createIfMissing(path)) return Outcome::failed;
  descriptor_ = UniqueDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor_) return Outcome::failed;
  if (::flock(descriptor_.get(), LOCK_EX | LOCK_NB) == 0) return Outcome::acquired;
  const bool held = errno == EWOULDBLOCK;
  descriptor_.reset();
  return held ? Outcome::heldByAnother : Outcome::failed;
}

}  // namespace kestrel
