// Per-thread state of vector math: mode word, status, callback and input-vector base.
#ifndef PEX_CORE_MODE_PEX_MODE_H_
#define PEX_CORE_MODE_PEX_MODE_H_

namespace pex {

// Where the caller's whole input vector begins, null where none was set.
const void* InputVectorBase();

}  // namespace pex

#endif  // PEX_CORE_MODE_PEX_MODE_H_
