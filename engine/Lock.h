#pragma once

// A plain mutex that also exists under mingw-w64's win32 thread model, where std::mutex does not.
#ifdef _WIN32
#include <windows.h>
#else
#include <mutex>
#endif

namespace tovrand::engine {

class Mutex {
 public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;
#ifdef _WIN32
  void lock() {
    AcquireSRWLockExclusive(&lock_);
  }
  void unlock() {
    ReleaseSRWLockExclusive(&lock_);
  }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
#else
  void lock() {
    mutex_.lock();
  }
  void unlock() {
    mutex_.unlock();
  }

 private:
  std::mutex mutex_;
#endif
};

class Guard {
 public:
  explicit Guard(Mutex& m) : m_(m) { m_.lock(); }
  ~Guard() { m_.unlock(); }
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

 private:
  Mutex& m_;
};

}  // namespace tovrand::engine
