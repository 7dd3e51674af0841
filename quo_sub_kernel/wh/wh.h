// State of WH, and its member's parameters.
#ifndef QUO_SUB_KERNEL_WH_WH_H_
#define QUO_SUB_KERNEL_WH_WH_H_

#include <cstdint>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/modular.h"
#include "quo_sub_kernel/wh/wh_tables.h"

namespace quo {

// Behind the stream's head.
struct StateWH {
  uint32_t x[4];  // the next output
  uint32_t a[4];  // the current multipliers
};

inline constexpr uint32_t kMembersWH = 273;

// A stream's state and the row of its member.
struct MemberWH {
  StateWH* state;
  const uint8_t* a;
  const uint32_t* m;
  const double* inverse;

  explicit MemberWH(StreamState* stream) : state(reinterpret_cast<StateWH*>(stream + 1)) {
    const uint32_t row = Row(stream->id);
    a = _quo_WH_A[row];
    m = _quo_WH_M[row];
    inverse = _quodWH_IM_Tab[row];
  }

  // Identifiers below 0x100000 count the members from 4, others in their low 20 bits. What names no
  // member, as streams that pass validation never do, is member 0.
  static uint32_t Row(int32_t id) {
    const uint32_t row = id < 0x100000 ? static_cast<uint32_t>(id) - 4 : id & 0xFFFFF;
    return row < kMembersWH ? row : 0;
  }
};

}  // namespace quo

#endif  // QUO_SUB_KERNEL_WH_WH_H_
