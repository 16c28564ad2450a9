#include "KestrelCore/Support/Mutex.h"

#include <cstdio>
#include <cstdlib>

namespace kestrel {
namespace {

#ifndef NDEBUG
thread_local int heldComponents = 0;
thread_local int heldLeaves = 0;

int& heldOf(LockRank rank) {
  return rank == LockRank::leaf ? heldLeaves : heldComponents;
}

void noteAcquire(LockRank rank) {
  if (heldLeaves > 0 || (rank == LockRank::component && heldComponents > 0)) {
    std::fputs("Kestrel: a lock was taken while another of the same or a lower rank was held\n", stderr);
    std::abort();
  }
  ++heldOf(rank);
}

void noteRelease(LockRank rank) {
  --heldOf(rank);
}
#else
void noteAcquire(LockRank) {}
void noteRelease(LockRank) {}
#endif

}  // namespace

void Mutex::lock() {
  noteAcquire(rank_);
  mutex_.lock();
}

void Mutex::unlock() {
  mutex_.unlock();
  noteRelease(rank_);
}

}  // namespace kestrel
