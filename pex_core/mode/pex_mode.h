// Per-thread state of vector math: mode word, status, callback and input-vector base.
#ifndef PEX_CORE_MODE_PEX_MODE_H_
#define PEX_CORE_MODE_PEX_MODE_H_

#include <cstdint>

#include "pexquo/pex.h"

namespace pex {

// Where the calling thread's mode word, status and callback are kept; each stays in its place as
// long as the thread lives. For those who save all three, change them and bring them back.
struct ThreadState {
  uint32_t& mode;
  int32_t& status;
  PexErrorCallBack& callback;
};
ThreadState CurrentThread();

// Where the caller's whole input vector begins, null where none was set.
const void* InputVectorBase();

}  // namespace pex

#endif  // PEX_CORE_MODE_PEX_MODE_H_
