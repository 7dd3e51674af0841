// One array of more than 2^31 elements, in place: 8 GiB.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include <cstdint>
#include <vector>

#include "pexquo/pexquo.h"
#include "tests/front/streams_under_test.h"

namespace {

constexpr int64_t kLength = (int64_t{1} << 31) + 12345;

// The memory of one array, filled as it is first touched.
class LongArray {
 public:
  LongArray()
      : memory_(mmap(nullptr, kBytes, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {}
  ~LongArray() {
    if (memory_ != MAP_FAILED) munmap(memory_, kBytes);
  }
  LongArray(const LongArray&) = delete;
  LongArray& operator=(const LongArray&) = delete;
  float* data() { return memory_ == MAP_FAILED ? nullptr : static_cast<float*>(memory_); }

 private:
  static constexpr size_t kBytes = sizeof(float) * static_cast<size_t>(kLength);
  void* memory_;
};

std::vector<int32_t> indices;

int KeepIndex(PexErrorContext* record) {
  indices.push_back(record->index);
  return 0;
}

bool Fits() {
  return sysconf(_SC_AVPHYS_PAGES) >
         static_cast<int64_t>(sizeof(float)) * kLength / sysconf(_SC_PAGESIZE) * 5 / 4;
}

TEST(LongArray, IsComputedInPlaceAndReportsItsOwnIndices) {
  if (!Fits()) GTEST_SKIP() << "too little memory";
  LongArray array;
  float* const x = array.data();
  ASSERT_NE(x, nullptr);
  const auto argument = [](int64_t i) { return static_cast<float>(i % 1021) * 0x1p-5f + 1; };
  for (int64_t i = 0; i < kLength; ++i) x[i] = argument(i);
  const std::vector<int64_t> poles = {3, (int64_t{1} << 30) + 7, (int64_t{1} << 31) - 1,
                                      (int64_t{1} << 31) + 5, kLength - 1};
  for (const int64_t i : poles) x[i] = 0;
  pexSetErrorCallBack(KeepIndex);
  EXPECT_EQ(vsLnMode(kLength, x, x, PEX_ACCURACY_EP), 0);
  pexClearErrorCallBack();

  float expected[1021], arguments[1021];
  for (int64_t i = 0; i < 1021; ++i) arguments[i] = argument(i);
  vsLnMode(1021, arguments, expected, PEX_ACCURACY_EP);
  std::vector<int32_t> wanted;
  for (const int64_t i : poles) {
    EXPECT_EQ(x[i], -HUGE_VALF);
    wanted.push_back(static_cast<int32_t>(static_cast<uint32_t>(i)));
    x[i] = expected[i % 1021];
  }
  EXPECT_EQ(indices, wanted);
  int64_t wrong = 0;
  for (int64_t i = 0; i < kLength; ++i) wrong += x[i] != expected[i % 1021];
  EXPECT_EQ(wrong, 0);
}

TEST(LongArray, IsFilledFromOneStreamAsByManyCalls) {
  if (!Fits()) GTEST_SKIP() << "too little memory";
  LongArray array;
  float* const r = array.data();
  ASSERT_NE(r, nullptr);
  const OwnedStream whole = NewStream(QUO_BRNG_MCG31M1), parts = NewStream(QUO_BRNG_MCG31M1);
  EXPECT_EQ(quosRngExponential(0, whole.get(), kLength, r, 0, 1), QUO_OK);
  constexpr int64_t kPart = 1000003;
  std::vector<float> part(kPart);
  int64_t wrong = 0;
  for (int64_t done = 0; done < kLength; done += kPart) {
    const int64_t n = std::min(kPart, kLength - done);
    ASSERT_EQ(quosRngExponential(0, parts.get(), n, part.data(), 0, 1), QUO_OK);
    for (int64_t i = 0; i < n; ++i) wrong += r[done + i] != part[static_cast<size_t>(i)];
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_TRUE(StandAlike(whole.get(), parts.get()));
}

}  // namespace
