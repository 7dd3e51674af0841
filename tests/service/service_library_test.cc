// The service library: memory, messages, triangular products.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "pexquo/kro.h"

// A sanitizer's allocator is to fail as the system's does.
extern "C" KRO_API const char* __asan_default_options() { return "allocator_may_return_null=1"; }
extern "C" KRO_API const char* __tsan_default_options() { return "allocator_may_return_null=1"; }

namespace {

TEST(Memory, HasTheAlignmentAskedFor) {
  for (int32_t alignment = 1; alignment <= 4096; alignment *= 2) {
    for (const size_t size : {0, 1, 7, 64, 1000, 100000}) {
      void* const p = kro_serv_kro_malloc(size, alignment);
      ASSERT_NE(p, nullptr);
      EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % static_cast<uintptr_t>(alignment), 0u);
      std::memset(p, 0xAB, size);
      kro_serv_kro_free(p);
    }
  }
  void* const p = kro_serv_kro_malloc(8, 0);
  EXPECT_NE(p, nullptr);
  kro_serv_kro_free(p);
  kro_serv_kro_free(nullptr);
}

TEST(Memory, IsNullWhenThereIsNone) {
  for (const int32_t alignment : {1, 64}) {
    EXPECT_EQ(kro_serv_kro_malloc(SIZE_MAX / 4, alignment), nullptr);
  }
}

struct Printed {
  int returned;
  std::string text;
};

template <class... Args>
Printed Print(int32_t id, Args... args) {
  testing::internal::CaptureStderr();
  const int returned = kro_serv_kro_print(1, id, sizeof...(args), args...);
  return {returned, testing::internal::GetCapturedStderr()};
}

TEST(Messages, TakeTheirArguments) {
  std::vector<Printed> all = {Print(735, "vdName", 12)};
  for (int32_t id = 736; id <= 741; ++id) all.push_back(Print(id, "vdName"));
  for (int32_t id = 742; id <= 753; ++id) all.push_back(Print(id, 12, -0.1));
  int32_t id = 735;
  for (const Printed& p : all) {
    SCOPED_TRACE(id);
    EXPECT_EQ(p.returned, static_cast<int>(p.text.size()));
    EXPECT_EQ(p.text.find('\n'), p.text.size() - 1) << "one line";
    EXPECT_EQ(p.text.find("vdName") != std::string::npos, id <= 741) << p.text;
    EXPECT_EQ(p.text.find("12") != std::string::npos, id == 735 || id >= 742) << p.text;
    // 17 digits: what is printed can be read back exactly.
    EXPECT_EQ(p.text.find("-0.10000000000000001") != std::string::npos, id >= 742) << p.text;
    ++id;
  }
  for (size_t i = 0; i < 7; ++i) {  // each headline says something else
    for (size_t j = 0; j < i; ++j) EXPECT_NE(all[i].text, all[j].text);
  }
}

TEST(Messages, UnknownIdsAndWrongCountsPrintNothing) {
  for (const int32_t id : {0, 734, 754, -1, INT32_MAX, INT32_MIN}) {
    for (const Printed& p : {Print(id), Print(id, "name"), Print(id, 12, -0.1)}) {
      EXPECT_EQ(p.returned, -1);
      EXPECT_EQ(p.text, "");
    }
  }
  for (const Printed& p : {Print(735, "name"), Print(736), Print(737, "name", 1), Print(742, 1)}) {
    EXPECT_EQ(p.returned, -1);
    EXPECT_EQ(p.text, "");
  }
}

TEST(Messages, LongNamesArePrintedWhole) {
  const std::string name(1000, 'x');
  const Printed p = Print(738, name.c_str());
  EXPECT_EQ(p.text, "pexquo: " + name + ": singularity\n");
  EXPECT_EQ(p.returned, static_cast<int>(p.text.size()));
}

// B := 2 A B with A = [1 2; 0 3] upper triangular (its lower part must not be read),
// B = [1 3; 2 4], in columns of leading dimension 3; then B := 2 B A^T with A's diagonal taken
// as 1.
template <typename T, class Multiply>
void CheckTriangularProduct(Multiply multiply) {
  const T a[6] = {1, 999, 999, 2, 3, 999};
  const T alpha = 2;
  const int32_t two = 2, three = 3;
  T b[6] = {1, 2, -7, 3, 4, -7};
  multiply("L", "U", "N", "N", &two, &two, &alpha, a, &three, b, &three);
  EXPECT_EQ(std::vector<T>(b, b + 6), (std::vector<T>{10, 12, -7, 22, 24, -7}));

  T c[6] = {1, 2, -7, 3, 4, -7};
  multiply("R", "U", "T", "U", &two, &two, &alpha, a, &three, c, &three);
  EXPECT_EQ(std::vector<T>(c, c + 6), (std::vector<T>{14, 20, -7, 6, 8, -7}));
}

TEST(TriangularProducts, AreThoseOfTheTextbook) {
  CheckTriangularProduct<double>(kro_blas4pex_dtrmm);
  CheckTriangularProduct<double>(kro_blas_xdtrmm_4pex);
  CheckTriangularProduct<float>(kro_blas4pex_strmm);
  CheckTriangularProduct<float>(kro_blas_xstrmm_4pex);
}

}  // namespace
