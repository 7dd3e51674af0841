// Vectors of normal numbers x = a + T z: standard normal vectors z through the lower triangular
// factor T of their covariance T T', stored in full, packed by columns, or as a diagonal.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/continuous/gaussianmv/gaussianmv.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cstring>
#include <limits>

#include "hwy/highway.h"
#include "kro/columns-inl.h"
#include "pexquo/kro.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/unaligned.h"

#ifndef QUO_KERNEL_CONTINUOUS_GAUSSIANMV_GAUSSIANMV_CC_  // once, not once per vector level
#define QUO_KERNEL_CONTINUOUS_GAUSSIANMV_GAUSSIANMV_CC_
namespace quo {
namespace {

// The passes of one vector level over m-vectors x. Arrays may stand at any address, but for w.
template <typename T>
struct VectorPasses {
  // x[j] + a[j], and x[j] t[j] + a[j].
  void (*add)(size_t m, size_t n, const T* t, const T* a, T* x);
  void (*scale_and_add)(size_t m, size_t n, const T* t, const T* a, T* x);
  // T x + a for dimensions to 16.
  void (*multiply)(const kro::Columns<T>& t, size_t n, T* x);
  // T x + a by columns of T, packed in t; w has room for m numbers.
  void (*multiply_packed)(size_t m, size_t n, const T* t, const T* a, T* w, T* x);
};

}  // namespace
}  // namespace quo
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Registers full of an array of m numbers that repeats.
template <typename T>
class Repeated {
 public:
  using Tag = hn::ScalableTag<T>;
  static constexpr size_t kLanes = hn::MaxLanes(Tag());

  Repeated(const T* p, size_t m) : p_(p), m_(m), wrap_(m > kLanes ? m - kLanes : 0) {
    for (size_t i = 0; i < 2 * kLanes; ++i) around_[i] = Get(p + (wrap_ + i) % m);
  }
  // From place < m on.
  HWY_INLINE hn::Vec<Tag> Load(size_t place) const {
    return hn::LoadU(Tag(), place + kLanes <= m_ ? p_ + place : around_ + (place - wrap_));
  }

 private:
  const T* p_;
  size_t m_;
  size_t wrap_;           // where around_ begins
  T around_[2 * kLanes];  // the places about the end of the array and its beginning
};

template <bool kScale, typename T>
void Affine(size_t m, size_t n, const T* t, const T* a, T* x) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d), count = m * n, step = lanes % m;
  const Repeated<T> factor(kScale ? t : a, m), shift(a, m);
  size_t place = 0;
  for (size_t p = 0; p < count; p += lanes) {
    const bool whole = p + lanes <= count;
    HWY_ALIGN T last[hn::MaxLanes(d)] = {};
    if (!whole) std::memcpy(last, x + p, (count - p) * sizeof(T));
    auto v = whole ? hn::LoadU(d, x + p) : hn::Load(d, last);
    if constexpr (kScale) v = hn::Mul(v, factor.Load(place));
    v = hn::Add(v, shift.Load(place));
    if (whole) [[likely]] {
      hn::StoreU(v, d, x + p);
    } else {
      hn::Store(v, d, last);
      std::memcpy(x + p, last, (count - p) * sizeof(T));
    }
    place += step;
    if (place >= m) place -= m;
  }
}

template <typename T>
void Multiply(const kro::Columns<T>& t, size_t n, T* x) {
  kro::HWY_NAMESPACE::MultiplyColumnsInPlace(t, t.m * n, x);
}

// w[j] = t[j] z + w[j], the first time t[j] z.
template <bool kFirst, typename T>
HWY_INLINE void AddColumn(size_t n, const T* t, T z, T* w) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d);
  const auto vz = hn::Set(d, z);
  size_t j = 0;
  for (; j + lanes <= n; j += lanes) {
    const auto product = hn::Mul(hn::LoadU(d, t + j), vz);
    hn::StoreU(kFirst ? product : hn::Add(product, hn::LoadU(d, w + j)), d, w + j);
  }
  for (; j < n; ++j) w[j] = kFirst ? Get(t + j) * z : Get(t + j) * z + w[j];
}

template <typename T>
void MultiplyPacked(size_t m, size_t n, const T* t, const T* a, T* w, T* x) {
  for (size_t i = 0; i < n; ++i, x += m) {
    const T* column = t;
    AddColumn<true>(m, column, Get(x), w);
    for (size_t c = 1; c < m; ++c) {
      column += m - c + 1;
      AddColumn<false>(m - c, column, Get(x + c), w + c);
    }
    Affine<false>(m, 1, a, a, w);
    std::memcpy(x, w, m * sizeof(T));
  }
}

template <typename T>
constexpr VectorPasses<T> kVectorPasses = {Affine<false, T>, Affine<true, T>, Multiply<T>,
                                           MultiplyPacked<T>};

const VectorPasses<double>* DoubleVectorPasses() { return &kVectorPasses<double>; }
const VectorPasses<float>* SingleVectorPasses() { return &kVectorPasses<float>; }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(DoubleVectorPasses);
HWY_EXPORT(SingleVectorPasses);

namespace {

// ---- The entries by type. ----

const VectorPasses<double>& PassesFor(double) {
  return *HWY_DYNAMIC_DISPATCH(DoubleVectorPasses)();
}
const VectorPasses<float>& PassesFor(float) { return *HWY_DYNAMIC_DISPATCH(SingleVectorPasses)(); }

int32_t Gaussian(uint32_t method, StreamState* stream, int32_t n, double* r, double a,
                 double sigma) {
  return _quodRngGaussian(method, stream, n, r, a, sigma);
}
int32_t Gaussian(uint32_t method, StreamState* stream, int32_t n, float* r, float a, float sigma) {
  return _quosRngGaussian(method, stream, n, r, a, sigma);
}

// t, by columns an upper triangular matrix, transposed times the columns of x.
constexpr int32_t kFewDimensions = 10;

void Multiply(int32_t m, int32_t n, const double* t, double* x) {
  const double one = 1;
  const auto trmm = m > kFewDimensions ? kro_blas4pex_dtrmm : kro_blas_xdtrmm_4pex;
  trmm("L", "U", "T", "N", &m, &n, &one, t, &m, x, &m);
}
void Multiply(int32_t m, int32_t n, const float* t, float* x) {
  const float one = 1;
  const auto trmm = m > kFewDimensions ? kro_blas4pex_strmm : kro_blas_xstrmm_4pex;
  trmm("L", "U", "T", "N", &m, &n, &one, t, &m, x, &m);
}

// ---- The factor in one of its storages, applied to vectors x of standard normal numbers. ----

template <typename T>
struct Factor {
  int32_t m, storage;
  const T *a, *t;
  const VectorPasses<T>& passes = PassesFor(T());

  int32_t Apply(int32_t n, T* x) const {
    const auto dimension = static_cast<size_t>(m), count = static_cast<size_t>(n);
    switch (storage) {
      case QUO_STORAGE_FULL:
        Multiply(m, n, t, x);
        passes.add(dimension, count, t, a, x);
        return QUO_OK;
      case QUO_STORAGE_PACKED:
        return ApplyPacked(dimension, count, x);
      case QUO_STORAGE_DIAGONAL:
        passes.scale_and_add(dimension, count, t, a, x);
        return QUO_OK;
      default:
        return QUO_OK;
    }
  }

  int32_t ApplyPacked(size_t dimension, size_t n, T* x) const {
    if (dimension <= kro::Columns<T>::kDimensions) {
      const kro::Columns<T> columns(dimension, false, a, [&](size_t i, size_t j) {
        return Get(t + j * dimension - j * (j + 1) / 2 + i);
      });
      passes.multiply(columns, n, x);
      return QUO_OK;
    }
    constexpr size_t kOnStack = 1024;  // dimensions below
    if (dimension < kOnStack) {
      alignas(64) T w[kOnStack];
      passes.multiply_packed(dimension, n, t, a, w, x);
      return QUO_OK;
    }
    auto* w = static_cast<T*>(kro_serv_kro_malloc(dimension * sizeof(T), 32));
    if (w == nullptr) return QUO_NO_MEMORY;
    passes.multiply_packed(dimension, n, t, a, w, x);
    kro_serv_kro_free(w);
    return QUO_OK;
  }
};

// Standard normal numbers for n m-vectors, in requests of whole vectors.
template <typename T>
int32_t Draw(uint32_t method, StreamState* stream, int32_t m, int32_t n, T* r) {
  const int32_t most = std::numeric_limits<int32_t>::max() / m;
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0;) {
    const int32_t count = std::min(left, most);
    status = Gaussian(method, stream, count * m, r, T(0), T(1));
    if (status < 0) return status;
    r += static_cast<size_t>(count) * static_cast<size_t>(m);
    left -= count;
  }
  return status;
}

// Where nobody sees the requests, vectors of few dimensions are drawn and multiplied in the cache.
template <typename T>
int32_t GaussianMV(uint32_t method, StreamState* stream, int32_t n, T* r, int32_t m,
                   int32_t storage, const T* a, const T* t) {
  if (m < 1) return QUO_BAD_ARGUMENT;
  if (m == 1) return Gaussian(method, stream, n, r, Get(a), Get(t));
  constexpr int32_t kInCache = 32768 / sizeof(T);
  const QuietCall quiet;
  const Factor<T> factor{m, storage, a, t};
  const bool in_cache = m <= 16 && RequestsAreUnseen(stream);
  const int32_t most = in_cache ? kInCache / m : n;
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0;) {
    const int32_t count = std::min(left, most);
    status = Draw(method, stream, m, count, r);
    if (status < 0) return status;
    if (const int32_t failure = factor.Apply(count, r); failure < 0) return failure;
    r += static_cast<size_t>(count) * static_cast<size_t>(m);
    left -= count;
  }
  return status;
}

}  // namespace

extern "C" QUO_API int32_t _quodRngGaussianMV(uint32_t method, StreamState* stream, int32_t n,
                                              double* r, int32_t dimen, int32_t mstorage,
                                              const double* a, const double* t) {
  return GaussianMV(method, stream, n, r, dimen, mstorage, a, t);
}

extern "C" QUO_API int32_t _quosRngGaussianMV(uint32_t method, StreamState* stream, int32_t n,
                                              float* r, int32_t dimen, int32_t mstorage,
                                              const float* a, const float* t) {
  return GaussianMV(method, stream, n, r, dimen, mstorage, a, t);
}

}  // namespace quo
#endif
