// Takes the place of the service library's memory in a test program: counts, and fails when told
// to. For one source file of a program.
#ifndef TESTS_STREAMS_COUNTED_MEMORY_H_
#define TESTS_STREAMS_COUNTED_MEMORY_H_

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "pexquo/kro.h"

namespace {

struct Memory {
  std::unordered_map<void*, size_t> live;  // blocks with their sizes
  size_t bytes = 0, most_bytes = 0, largest = 0;
  int countdown = 0;  // this allocation from now fails, 0 for none
  bool failed = false;
  int wrong_alignment = 0, wrong_free = 0;
};
Memory memory;

}  // namespace

void* kro_serv_kro_malloc(size_t size, int32_t alignment) {
  if (alignment != 32) ++memory.wrong_alignment;
  memory.largest = std::max(memory.largest, size);
  if (memory.countdown > 0 && --memory.countdown == 0) {
    memory.failed = true;
    return nullptr;
  }
  void* p = nullptr;
  if (posix_memalign(&p, 32, size == 0 ? 1 : size) != 0) std::abort();
  std::memset(p, 0xEE, size);
  memory.live[p] = size;
  memory.bytes += size;
  memory.most_bytes = std::max(memory.most_bytes, memory.bytes);
  return p;
}

void kro_serv_kro_free(void* p) {
  if (p == nullptr) return;
  const auto block = memory.live.find(p);
  if (block == memory.live.end()) {
    ++memory.wrong_free;
  } else {
    memory.bytes -= block->second;
    memory.live.erase(block);
  }
  std::free(p);
}

#endif  // TESTS_STREAMS_COUNTED_MEMORY_H_
