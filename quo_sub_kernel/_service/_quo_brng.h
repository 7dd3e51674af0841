// The registry row behind a stream, for everything that draws from one or copies one.
#ifndef QUO_SUB_KERNEL__SERVICE__QUO_BRNG_H_
#define QUO_SUB_KERNEL__SERVICE__QUO_BRNG_H_

#include "pexquo/quo.h"

namespace quo {

// The record of an identifier of either scheme, or null when no such generator or member exists.
const BrngProperties* FindBrng(int32_t id);

}  // namespace quo

#endif  // QUO_SUB_KERNEL__SERVICE__QUO_BRNG_H_
