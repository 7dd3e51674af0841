// The multivariate normal distribution against a plain loop over the standard normal numbers of the
// univariate one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

#include "pexquo/kro.h"
#include "tests/gaussian/gaussian_reference.h"
#include "tests/streams/scripted_generator.h"
#include "tests/support/random.h"
#include "tests/uniform/levels.h"

namespace {

int failing_allocation = -1;  // the allocation from now that fails
size_t last_allocation = 0;

}  // namespace

// In place of the service library's, so that memory can run out.
void* kro_serv_kro_malloc(size_t size, int32_t alignment) {
  if (failing_allocation >= 0 && failing_allocation-- == 0) return nullptr;
  last_allocation = size;
  return std::aligned_alloc(static_cast<size_t>(std::max(alignment, 16)), (size + 31) / 32 * 32);
}
void kro_serv_kro_free(void* p) { std::free(p); }

namespace {

using namespace reference;

template <typename T>
struct Problem {
  int32_t m, n, storage;
  std::vector<T> a, t;
  std::vector<T> z;  // what the univariate distribution gives

  // T[i][j], j <= i.
  T Entry(size_t i, size_t j) const {
    const auto dimension = static_cast<size_t>(m);
    if (storage == QUO_STORAGE_FULL) return t[i * dimension + j];
    if (storage == QUO_STORAGE_DIAGONAL) return t[i];
    size_t at = 0;
    for (size_t c = 0; c < j; ++c) at += dimension - c;
    return t[at + i - j];
  }

  std::vector<T> Want() const {
    const auto dimension = static_cast<size_t>(m);
    std::vector<T> x(z.size());
    for (size_t k = 0; k < z.size(); ++k) {
      const size_t i = k % dimension;
      const T* const v = z.data() + (k - i);
      T sum;
      if (storage == QUO_STORAGE_FULL) {
        sum = Entry(i, i) * v[i];
        for (size_t j = 0; j < i; ++j) sum += Entry(i, j) * v[j];
      } else if (storage == QUO_STORAGE_PACKED) {
        sum = Entry(i, 0) * v[0];
        for (size_t j = 1; j <= i; ++j) sum = Entry(i, j) * v[j] + sum;
      } else if (storage == QUO_STORAGE_DIAGONAL) {
        sum = v[i] * t[i];
      } else {
        x[k] = v[i];
        continue;
      }
      x[k] = sum + a[i];
    }
    return x;
  }
};

template <class P>
Problem<typename P::T> Make(int32_t id, uint32_t method, int32_t m, int32_t n, int32_t storage) {
  using T = typename P::T;
  Problem<T> problem{m, n, storage, {}, {}, std::vector<T>(static_cast<size_t>(n) * m)};
  Random random(static_cast<uint64_t>(m) * 10 + static_cast<uint64_t>(storage));
  const auto number = [&] { return T(2 * random.Unit() - 1); };
  const auto dimension = static_cast<size_t>(m);
  problem.a.resize(dimension);
  problem.t.resize(dimension * dimension);
  for (T& x : problem.a) x = number();
  for (T& x : problem.t) x = number();
  if (storage == QUO_STORAGE_FULL) {  // what is above the diagonal is not for reading
    for (size_t i = 0; i < dimension; ++i) {
      for (size_t j = i + 1; j < dimension; ++j) {
        problem.t[i * dimension + j] = std::numeric_limits<T>::signaling_NaN();
      }
    }
  }
  StreamState* stream = NewStream(id, 7);
  Gaussian(method, stream, n * m, problem.z.data(), T(0), T(1));
  __quoDeleteStream(&stream);
  return problem;
}

// The result drawn to an address `offset` bytes after an aligned one.
template <typename T>
std::vector<T> Got(const Problem<T>& problem, int32_t id, uint32_t method, size_t offset) {
  const auto shifted = [&](const std::vector<T>& v) {
    std::vector<char> bytes(v.size() * sizeof(T) + offset);
    if (!v.empty()) std::memcpy(bytes.data() + offset, v.data(), v.size() * sizeof(T));
    return bytes;
  };
  auto a = shifted(problem.a), t = shifted(problem.t), x = shifted(problem.z);
  std::fill(x.begin(), x.end(), 0);
  const auto at = [&](std::vector<char>& bytes) {
    return reinterpret_cast<T*>(bytes.data() + offset);
  };
  StreamState* stream = NewStream(id, 7);
  EXPECT_EQ(GaussianMV(method, stream, problem.n, at(x), problem.m, problem.storage, at(a), at(t)),
            0);
  __quoDeleteStream(&stream);
  std::vector<T> r(problem.z.size());
  if (!r.empty()) std::memcpy(r.data(), x.data() + offset, r.size() * sizeof(T));
  return r;
}

template <class P>
class GaussianMVOf : public testing::Test {};
using Types = testing::Types<Double, Single>;
TYPED_TEST_SUITE(GaussianMVOf, Types);

TYPED_TEST(GaussianMVOf, IsThePlainLoop) {
  for (const int32_t id : {QUO_BRNG_MCG59, scripted::Id()}) {
    scripted::Script script;
    script.values = {0.3, 0.9, 0.01, 0.45, 0.77, 0.123, 0.5, 0.99, 0.61};
    for (const int32_t m : {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 15, 16, 17, 40}) {
      for (const int32_t storage : {0, 1, 2, 3, -1}) {
        if (storage == QUO_STORAGE_FULL && m > 10) continue;
        for (const int32_t n : {1, 2, 3, 130, 1001, 2200}) {
          if (n * m > 12000) continue;
          const auto method = static_cast<uint32_t>((n + m) % 3);
          scripted::script = script;
          const auto problem = Make<TypeParam>(id, method, m, n, storage);
          const auto want = problem.Want();
          levels::ForEach([&] {
            for (const size_t offset : {0, 8, 3}) {
              scripted::script = script;
              const auto got = Got(problem, id, method, offset);
              EXPECT_EQ(FirstDifference(got.data(), want), -1)
                  << "dimension " << m << ", storage " << storage << ", n = " << n << ", offset "
                  << offset;
            }
          });
        }
      }
    }
  }
}

// Beyond 10 dimensions the system's BLAS sums in an order of its own.
TYPED_TEST(GaussianMVOf, FullStorageByTheSystemsBlas) {
  using T = typename TypeParam::T;
  for (const int32_t m : {11, 16, 64, 200}) {
    const auto problem = Make<TypeParam>(QUO_BRNG_MCG59, 2, m, 50, QUO_STORAGE_FULL);
    const auto want = problem.Want();
    const auto got = Got(problem, QUO_BRNG_MCG59, 2, 0);
    const double bound = 8.0 * m * static_cast<double>(std::numeric_limits<T>::epsilon());
    for (size_t i = 0; i < want.size(); ++i) {
      ASSERT_NEAR(static_cast<double>(got[i]), static_cast<double>(want[i]), bound)
          << "dimension " << m << ", element " << i;
    }
  }
}

TYPED_TEST(GaussianMVOf, LargePackedFactorTakesItsVectorFromTheHeap) {
  using T = typename TypeParam::T;
  for (const int32_t m : {1023, 1024}) {
    const auto problem = Make<TypeParam>(QUO_BRNG_MCG59, 1, m, 2, QUO_STORAGE_PACKED);
    const auto want = problem.Want();
    levels::ForEach([&] {
      last_allocation = 0;
      EXPECT_EQ(FirstDifference(Got(problem, QUO_BRNG_MCG59, 1, 0).data(), want), -1) << m;
      if (m == 1024) {
        EXPECT_EQ(last_allocation, 1024 * sizeof(T));
      }
    });
  }
  // Without memory the standard normal numbers stay.
  const auto problem = Make<TypeParam>(QUO_BRNG_MCG59, 2, 1024, 2, QUO_STORAGE_PACKED);
  std::vector<T> r(problem.z.size());
  StreamState* stream = NewStream(QUO_BRNG_MCG59, 7);
  errno = 4711;
  failing_allocation = 0;
  EXPECT_EQ(GaussianMV(2, stream, 2, r.data(), 1024, QUO_STORAGE_PACKED, problem.a.data(),
                       problem.t.data()),
            QUO_NO_MEMORY);
  failing_allocation = -1;
  EXPECT_EQ(errno, 4711);
  EXPECT_EQ(r, problem.z);
  __quoDeleteStream(&stream);
}

// Of the chunk and of its block.
TYPED_TEST(GaussianMVOf, PairsWithoutMemory) {
  using T = typename TypeParam::T;
  StreamState* first = NewStream(QUO_BRNG_MCG59, 7);
  T any[1];
  Gaussian(2, first, 1, any, T(0), T(1));  // makes the thread's own state
  __quoDeleteStream(&first);
  for (const int failing : {0, 1}) {
    StreamState* stream = NewStream(QUO_BRNG_MCG59, 7);
    T r[3] = {T(9), T(9), T(9)}, want[3];
    failing_allocation = failing;
    EXPECT_EQ(Gaussian(1, stream, 3, r, T(0), T(1)), QUO_NO_MEMORY);
    failing_allocation = -1;
    EXPECT_EQ(r[0], T(9));
    EXPECT_EQ(__quoGetNumChunks(stream), 0);
    EXPECT_EQ(Gaussian(1, stream, 3, r, T(0), T(1)), 0);
    __quoDeleteStream(&stream);
    stream = NewStream(QUO_BRNG_MCG59, 7);
    Gaussian(1, stream, 3, want, T(0), T(1));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(r[i], want[i]) << "a failed call draws nothing";
    __quoDeleteStream(&stream);
  }
}

TYPED_TEST(GaussianMVOf, OneDimensionIsUnivariate) {
  using T = typename TypeParam::T;
  const T a = T(1.25), t = T(0.3);
  for (const int32_t storage : {0, 1, 2, 77}) {
    for (uint32_t method = 0; method < 3; ++method) {
      StreamState* stream = NewStream(QUO_BRNG_MCG59, 7);
      std::vector<T> want(1031), got(1031);
      Gaussian(method, stream, 1031, want.data(), a, t);
      __quoDeleteStream(&stream);
      stream = NewStream(QUO_BRNG_MCG59, 7);
      EXPECT_EQ(GaussianMV(method, stream, 1031, got.data(), 1, storage, &a, &t), 0);
      EXPECT_EQ(got, want);
      __quoDeleteStream(&stream);
    }
  }
}

// A neighbour that is no number does not spread to the vectors before and behind.
TYPED_TEST(GaussianMVOf, VectorsDoNotTouchEachOther) {
  using T = typename TypeParam::T;
  constexpr int32_t kVectors = 40;
  for (const int32_t m : {2, 3, 7, 10}) {
    for (const int32_t storage : {0, 1, 2}) {
      scripted::Script script;
      script.values.assign(static_cast<size_t>(kVectors * m), 0.5);
      const size_t bad = static_cast<size_t>(17 * m + m / 2);
      script.values[bad] = std::numeric_limits<double>::quiet_NaN();
      std::vector<T> a(static_cast<size_t>(m)), t(static_cast<size_t>(m * m), T(0.25));
      std::vector<T> x(script.values.size());
      levels::ForEach([&] {
        StreamState* stream = scripted::Start(script);
        GaussianMV(2, stream, kVectors, x.data(), m, storage, a.data(), t.data());
        __quoDeleteStream(&stream);
        for (size_t i = 0; i < x.size(); ++i) {
          const bool touched =
              storage == 2 ? i == bad : i >= bad && i < static_cast<size_t>(18 * m);
          EXPECT_EQ(std::isnan(x[i]), touched) << "dimension " << m << ", element " << i;
        }
      });
    }
  }
}

TYPED_TEST(GaussianMVOf, FailuresAndRefusals) {
  using T = typename TypeParam::T;
  const T a[2] = {1, 1}, t[4] = {1, 1, 1, 1};
  std::vector<T> r(4000, T(9));
  StreamState* stream = NewStream(QUO_BRNG_MCG59, 7);
  EXPECT_EQ(GaussianMV(2, stream, 5, r.data(), 0, 0, a, t), QUO_BAD_ARGUMENT);
  EXPECT_EQ(GaussianMV(2, stream, 5, r.data(), -4, 0, a, t), QUO_BAD_ARGUMENT);
  EXPECT_EQ(GaussianMV(3, stream, 5, r.data(), 2, 0, a, t), QUO_BAD_METHOD);
  EXPECT_EQ(GaussianMV(2, stream, 0, r.data(), 2, 0, a, t), 0);
  EXPECT_EQ(GaussianMV(2, stream, -7, r.data(), 2, 0, a, t), 0);
  EXPECT_EQ(r, std::vector<T>(4000, T(9)));
  __quoDeleteStream(&stream);

  // The generator fails on its second request: nothing is multiplied.
  scripted::Script script;
  script.values = {0.5, 0.25};
  script.status = 3;
  stream = scripted::Start(script);
  std::vector<T> z(2000);
  EXPECT_EQ(Gaussian(0, stream, 2000, z.data(), T(0), T(1)), 3);
  __quoDeleteStream(&stream);
  script.failing_call = 1;
  script.failure = -1103;
  stream = scripted::Start(script);
  EXPECT_EQ(GaussianMV(0, stream, 1000, r.data(), 2, 0, a, t), -1103);
  for (size_t i = 0; i < 2000; ++i) ASSERT_EQ(r[i], i < 1024 ? z[i] : T(9)) << i;
  __quoDeleteStream(&stream);
}

// The service library's product, beyond what the distribution asks of it: other options and gaps
// between the columns go to the system's BLAS and mean what they do there.
// With gaps between the columns and without, where one combination has a loop of its own.
TEST(TriangularProduct, OtherOptions) {
  constexpr int32_t m = 3, n = 4, lda = 5, most = 4;
  double a[lda * n], b[most * n];
  Random random(3);
  for (double& x : a) x = random.Unit();
  for (double& x : b) x = random.Unit();
  const auto check = [&](const char* side, const char* uplo, const char* trans, const char* diag,
                         double alpha, int32_t ldb) {
    // Of the matrix as it is multiplied.
    const auto entry = [&](int row, int column) {
      if (*trans != 'N') std::swap(row, column);
      if (row == column) return *diag == 'U' ? 1 : a[row + lda * row];
      return (*uplo == 'U') == (row < column) ? a[row + lda * column] : 0;
    };
    double x[most * n];
    std::copy(std::begin(b), std::end(b), x);
    kro_blas_xdtrmm_4pex(side, uplo, trans, diag, &m, &n, &alpha, a, &lda, x, &ldb);
    for (int c = 0; c < n; ++c) {
      for (int i = 0; i < ldb; ++i) {
        double want = i < m ? 0 : b[i + ldb * c];  // the gap
        for (int k = 0; k < (*side == 'L' ? m : n) && i < m; ++k) {
          want += *side == 'L' ? alpha * entry(i, k) * b[k + ldb * c]
                               : alpha * b[i + ldb * k] * entry(k, c);
        }
        EXPECT_NEAR(x[i + ldb * c], want, 1e-14) << side << uplo << trans << diag << alpha << ldb;
      }
    }
  };
  for (const char* side : {"L", "R"}) {
    for (const char* uplo : {"U", "L"}) {
      for (const char* trans : {"T", "C", "N"}) {
        for (const char* diag : {"N", "U"}) {
          for (const double alpha : {1.0, -2.0}) {
            for (const int32_t ldb : {m, m + 1}) check(side, uplo, trans, diag, alpha, ldb);
          }
        }
      }
    }
  }
}

}  // namespace
