// iAbstract: a caller's 32-bit words, delivered as they are.
#include <cstring>

#include "quo_sub_kernel/_service/_quo_abstract.h"

int32_t __quoiNewAbstractStream(StreamState** stream, int32_t n, uint32_t* buffer, RefillI refill) {
  return quo::NewAbstract<uint32_t>(stream, QUO_BRNG_IABSTRACT, n, buffer, {}, refill);
}

int32_t __quoBRngiAbstractInitStream(int32_t method, StreamState* stream, int32_t,
                                     const uint32_t* params) {
  return quo::InitAbstract<uint32_t>(method, stream, params);
}

int32_t __quoiBRngiAbstract(StreamState* stream, int32_t n, uint32_t* r) {
  return quo::GenerateAbstract<uint32_t>(stream, n, r,
                                         [](const uint32_t* from, size_t count, uint32_t* to) {
                                           if (count != 0)
                                             std::memcpy(to, from, count * sizeof(uint32_t));
                                         });
}

int32_t __quodBRngiAbstract(StreamState*, int32_t, double*, double, double) {
  return QUO_WRONG_OUTPUT;
}
int32_t __quosBRngiAbstract(StreamState*, int32_t, float*, float, float) {
  return QUO_WRONG_OUTPUT;
}
