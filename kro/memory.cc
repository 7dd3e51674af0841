// Aligned memory from the C library's allocator.
#include <cstdlib>

#include "pexquo/kro.h"

extern "C" void* kro_serv_kro_malloc(size_t size, int32_t alignment) {
  if (size == 0) size = 1;
  if (alignment <= static_cast<int32_t>(sizeof(void*))) return std::malloc(size);
  void* p = nullptr;
  return posix_memalign(&p, static_cast<size_t>(alignment), size) == 0 ? p : nullptr;
}

extern "C" void kro_serv_kro_free(void* p) { std::free(p); }
