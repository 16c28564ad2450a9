#pragma once

#include <mutex>

// Clang's thread-safety analysis (-Wthread-safety) reads these; other compilers ignore them.
#if defined(__clang__)
#define KESTREL_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define KESTREL_THREAD_ANNOTATION(x)
#endif
#define KESTREL_GUARDED_BY(x) KESTREL_THREAD_ANNOTATION(guarded_by(x))
#define KESTREL_REQUIRES(...) KESTREL_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define KESTREL_EXCLUDES(...) KESTREL_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

namespace kestrel {

/// A component lock guards a component's cached state; no thread may hold two. A leaf lock (log sink,
/// executor queue, platform backend) may be taken under a component lock, but nothing may be taken under it.
enum class LockRank { component, leaf };

/// The only mutex of the system. Not re-entrant. Builds without NDEBUG abort on a breach of the ranks.
class KESTREL_THREAD_ANNOTATION(capability("mutex")) Mutex {
 public:
  explicit Mutex(LockRank rank = LockRank::component) : rank_(rank) {}
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() KESTREL_THREAD_ANNOTATION(acquire_capability());
  void unlock() KESTREL_THREAD_ANNOTATION(release_capability());

 private:
  std::mutex mutex_;
  const LockRank rank_;
};

/// Holds a Mutex for a scope; `unlock()` ends it early, before a callback.
class KESTREL_THREAD_ANNOTATION(scoped_lockable) LockGuard {
 public:
  explicit LockGuard(Mutex& mutex) KESTREL_THREAD_ANNOTATION(acquire_capability(mutex)) : mutex_(&mutex) {
    mutex.lock();
  }
  ~LockGuard() KESTREL_THREAD_ANNOTATION(release_capability()) {
    if (mutex_ != nullptr) mutex_->unlock();
  }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

  void unlock() KESTREL_THREAD_ANNOTATION(release_capability()) {
    mutex_->unlock();
    mutex_ = nullptr;
  }

 private:
  Mutex* mutex_;
};

}  // namespace kestrel
