#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/_kernel/passes.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "hwy/highway.h"
#include "quo_kernel/_kernel/each-inl.h"
#include "quo_kernel/_kernel/passes.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

template <typename T>
HWY_INLINE void NegateAll(size_t n, T* r) {
  Each(n, r, r, [](auto d, auto x) HWY_ATTR { return hn::Sub(hn::Zero(d), x); });
}

template <typename T>
HWY_INLINE void DisplaceAll(size_t n, T* r, T a, T beta) {
  Each(n, r, r, [=](auto d, auto x) HWY_ATTR {
    return hn::Add(hn::Mul(x, hn::Set(d, beta)), hn::Set(d, a));
  });
}

template <typename T>
HWY_INLINE void DisplaceAllUp(size_t n, T* r, T a, T beta) {
  Each(n, r, r, [=](auto d, auto x) HWY_ATTR {
    const auto least = hn::Set(d, a);
    return hn::Max(least, hn::Add(hn::Mul(x, hn::Set(d, beta)), least));
  });
}

template <typename T>
HWY_INLINE void DisplaceAllDown(size_t n, T* r, T a, T beta) {
  Each(n, r, r, [=](auto d, auto x) HWY_ATTR {
    const auto least = hn::Set(d, a);
    return hn::Max(least, hn::Sub(least, hn::Mul(x, hn::Set(d, beta))));
  });
}

#define QUO_PASSES(T, t)                                                            \
  void t##Negate(size_t n, T* r) { NegateAll(n, r); }                               \
  void t##Displace(size_t n, T* r, T a, T beta) { DisplaceAll(n, r, a, beta); }     \
  void t##DisplaceUp(size_t n, T* r, T a, T beta) { DisplaceAllUp(n, r, a, beta); } \
  void t##DisplaceDown(size_t n, T* r, T a, T beta) { DisplaceAllDown(n, r, a, beta); }
QUO_PASSES(double, d)
QUO_PASSES(float, s)
#undef QUO_PASSES

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

#define QUO_DISPLACE_PASS(T, t, Pass)                                  \
  HWY_EXPORT(t##Pass);                                                 \
  void Pass(int32_t n, T* r, T a, T beta) {                            \
    HWY_DYNAMIC_DISPATCH(t##Pass)(static_cast<size_t>(n), r, a, beta); \
  }
#define QUO_PASSES(T, t)                                                                       \
  HWY_EXPORT(t##Negate);                                                                       \
  void Negate(int32_t n, T* r) { HWY_DYNAMIC_DISPATCH(t##Negate)(static_cast<size_t>(n), r); } \
  QUO_DISPLACE_PASS(T, t, Displace)                                                            \
  QUO_DISPLACE_PASS(T, t, DisplaceUp)                                                          \
  QUO_DISPLACE_PASS(T, t, DisplaceDown)
QUO_PASSES(double, d)
QUO_PASSES(float, s)
#undef QUO_PASSES
#undef QUO_DISPLACE_PASS

}  // namespace quo
#endif
