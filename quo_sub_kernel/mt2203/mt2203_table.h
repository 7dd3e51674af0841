// The members of MT2203: twist matrix word a and tempering masks b and c.
#ifndef QUO_SUB_KERNEL_MT2203_MT2203_TABLE_H_
#define QUO_SUB_KERNEL_MT2203_MT2203_TABLE_H_

#include <cstdint>

namespace quo {

struct Mt2203Row {
  uint32_t a, b, c;
};
extern const Mt2203Row _quo_mt2203_table[1024];

}  // namespace quo

#endif  // QUO_SUB_KERNEL_MT2203_MT2203_TABLE_H_
