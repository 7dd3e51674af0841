// Member 0 of WH as a plain loop over its definition, for no package has it.
#ifndef BENCH_WH_LOOP_H_
#define BENCH_WH_LOOP_H_

namespace bench {

constexpr int kIntegers = 100;  // integers are drawn from [0, kIntegers)

// n outputs to r, going on where the last call ended: bits are uint32_t, for MCG59 uint64_t, for WH
// four uint32_t; integers are int32_t.
using PeerFill = void (*)(int n, void* r);

struct WhLoops {
  PeerFill bits, doubles, floats, integers;
};
WhLoops WhLoop();

}  // namespace bench

#endif  // BENCH_WH_LOOP_H_
