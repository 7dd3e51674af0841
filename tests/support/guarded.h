// Arrays between two pages that trap: any byte touched outside ends the test.
#ifndef TESTS_SUPPORT_GUARDED_H_
#define TESTS_SUPPORT_GUARDED_H_

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>

template <typename T>
class Guarded {
 public:
  explicit Guarded(size_t capacity) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    inner_ = (capacity * sizeof(T) + page - 1) / page * page;
    total_ = inner_ + 2 * page;
    void* p = mmap(nullptr, total_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) std::abort();
    base_ = static_cast<char*>(p);
    if (mprotect(base_ + page, inner_, PROT_READ | PROT_WRITE) != 0) std::abort();
    inside_ = base_ + page;
  }
  ~Guarded() { munmap(base_, total_); }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  // n elements with the trap right before, or right behind.
  T* AtStart() { return reinterpret_cast<T*>(inside_); }
  T* AtEnd(size_t n) { return reinterpret_cast<T*>(inside_ + inner_) - n; }

 private:
  char* base_;
  char* inside_;
  size_t inner_, total_;
};

#endif  // TESTS_SUPPORT_GUARDED_H_
