// Every vector function under its public name: the kernel's bits and reports in every tier, by the
// thread's mode and by the call's, whole and in pieces; and what is refused.
#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "front/thread_state.h"
#include "pexquo/pexquo.h"
#include "tests/front/front_functions.h"
#include "tests/promises/arguments.h"

namespace {

// The accuracy field's values, and what has none of its own.
constexpr uint32_t kAccuracies[] = {PEX_ACCURACY_LA, PEX_ACCURACY_HA, PEX_ACCURACY_EP, 4, 15};

// The thread's words as at first, before and after.
class FreshThread {
 public:
  FreshThread() { Reset(); }
  ~FreshThread() { Reset(); }

 private:
  static void Reset() {
    pexClearErrorCallBack();
    pexSetMode(PEX_MODE_DEFAULT);
    pexClearErrStatus();
    _pexSetInterfInputVectorPointer(nullptr);
    pexquo_front::piece = int64_t{1} << 30;
  }
};

std::vector<PexErrorContext> records;

int Keep(PexErrorContext* record) {
  records.push_back(*record);
  return 0;
}

class VectorFunction : public testing::TestWithParam<size_t> {
 protected:
  void SetUp() override { records.clear(); }
  const FrontFunction& front() const { return FrontFunctions()[GetParam()]; }

  Outcome ByThread(uint32_t accuracy, const Arguments& x, Place place = Place::Apart) const {
    pexSetMode(accuracy);
    const auto call = [&](size_t n, const void* a, const void* b, void* r1, void* r2) {
      EXPECT_EQ(front().call(static_cast<int64_t>(n), a, b, r1, r2), 0);
    };
    return CallInPlaceOf(front().Kernel(accuracy), call, x, kDefaultControl, 0, place);
  }

  Outcome ByCall(uint32_t accuracy, const Arguments& x) const {
    const uint32_t before = pexGetMode();
    const auto call = [&](size_t n, const void* a, const void* b, void* r1, void* r2) {
      const uint32_t mode = pexGetMode();
      EXPECT_EQ(front().call_with_mode(static_cast<int64_t>(n), a, b, r1, r2, accuracy), 0);
      EXPECT_EQ(pexGetMode(), mode);
    };
    const Outcome outcome = CallInPlaceOf(front().Kernel(accuracy), call, x, kDefaultControl);
    EXPECT_EQ(pexGetMode(), before);
    return outcome;
  }

  FreshThread fresh_;
};

TEST_P(VectorFunction, HasTheBitsAndReportsOfItsKernelInEveryTier) {
  for (const Arguments& x : EveryKind(front().Kernel(0), 1, 50)) {
    for (const uint32_t accuracy : kAccuracies) {
      SCOPED_TRACE(accuracy);
      const Outcome kernel = CallEntry(front().Kernel(accuracy), x, kDefaultControl);
      EXPECT_EQ(Difference(ByThread(accuracy, x), kernel), "");
      pexSetMode(accuracy == PEX_ACCURACY_LA ? PEX_ACCURACY_EP : PEX_ACCURACY_LA);
      EXPECT_EQ(Difference(ByCall(accuracy, x), kernel), "");
    }
  }
}

TEST_P(VectorFunction, WithoutAnAccuracyOfItsOwnACallTakesTheThreads) {
  const Arguments x = Ordinary(front().Kernel(0), 2, 100);
  for (const uint32_t accuracy : kAccuracies) {
    pexSetMode(accuracy);
    const auto call = [&](size_t n, const void* a, const void* b, void* r1, void* r2) {
      EXPECT_EQ(front().call_with_mode(static_cast<int64_t>(n), a, b, r1, r2, 0), 0);
    };
    const Outcome outcome = CallInPlaceOf(front().Kernel(accuracy), call, x, kDefaultControl);
    EXPECT_EQ(Difference(outcome, CallEntry(front().Kernel(accuracy), x, kDefaultControl)), "");
  }
}

TEST_P(VectorFunction, InPiecesIsTheSameWithIndicesInTheWhole) {
  const pex::Entry& kernel = front().Kernel(PEX_ACCURACY_HA);
  for (const Arguments& x : EveryKind(kernel, 3, 50)) {
    for (const Place place : {Place::Apart, Place::OverA}) {
      if (place == Place::OverA && kernel.argument_parts() != kernel.result_parts()) continue;
      const Outcome whole = CallEntry(kernel, x, kDefaultControl, 0, place);
      for (const int64_t piece : {64, 61}) {
        pexquo_front::piece = piece;
        EXPECT_EQ(Difference(ByThread(PEX_ACCURACY_HA, x, place), whole), "") << piece;
      }
    }
  }
}

// Five elements of anything.
struct Block {
  alignas(64) double numbers[10] = {};
};

TEST_P(VectorFunction, RefusesANegativeCountAndTouchesNothing) {
  const Block a, b;
  Block r1, r2;
  r1.numbers[0] = r2.numbers[0] = 4711;
  pexSetErrorCallBack(Keep);
  errno = 0;
  EXPECT_EQ(front().call(-1, &a, &b, &r1, &r2), PEX_STATUS_BAD_SIZE);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(front().call(INT64_MIN, nullptr, &b, nullptr, nullptr), PEX_STATUS_BAD_SIZE);
  EXPECT_EQ(pexGetErrStatus(), PEX_STATUS_BAD_SIZE);
  ASSERT_EQ(records.size(), 2u);
  for (const PexErrorContext& record : records) {
    EXPECT_EQ(record.code, PEX_STATUS_BAD_SIZE);
    EXPECT_EQ(record.index, 1);
    EXPECT_EQ(std::string(record.func_name), front().public_name());
  }
  EXPECT_EQ(r1.numbers[0], 4711);
  EXPECT_EQ(r2.numbers[0], 4711);
}

TEST_P(VectorFunction, RefusesEveryNullArrayByItsPlace) {
  const Block a, b;
  Block r1, r2;
  const pex::Shape shape = front().function().shape;
  const bool has_scalar = shape == pex::Shape::UnaryScalar;
  // The operands in the order of the parameters behind the count.
  std::vector<int> operands = {0};
  if (pex::ArgumentCount(shape) == 2) operands.push_back(1);
  operands.push_back(2);
  if (pex::ResultCount(shape) == 2) operands.push_back(3);
  for (size_t i = 0; i < operands.size(); ++i) {
    if (has_scalar && operands[i] == 1) continue;
    const void* arrays[] = {&a, &b, &r1, &r2};
    arrays[operands[i]] = nullptr;
    for (const void* const base :
         {static_cast<const void*>(nullptr), static_cast<const void*>(&a.numbers[3])}) {
      records.clear();
      pexSetMode(PEX_MODE_DEFAULT);
      pexSetErrorCallBack(Keep);
      _pexSetInterfInputVectorPointer(base);
      errno = 0;
      const auto call = [&](int64_t n) {
        return front().call(n, arrays[0], arrays[1], const_cast<void*>(arrays[2]),
                            const_cast<void*>(arrays[3]));
      };
      EXPECT_EQ(call(5), PEX_STATUS_BAD_MEM);
      EXPECT_EQ(errno, EACCES);
      EXPECT_EQ(pexClearErrStatus(), PEX_STATUS_BAD_MEM);
      // A mode for the call decides how it is reported.
      errno = 0;
      EXPECT_EQ(front().call_with_mode(5, arrays[0], arrays[1], const_cast<void*>(arrays[2]),
                                       const_cast<void*>(arrays[3]), PEX_ERRMODE_IGNORE),
                PEX_STATUS_BAD_MEM);
      EXPECT_EQ(errno, 0);
      EXPECT_EQ(pexGetMode(), PEX_MODE_DEFAULT);
      EXPECT_EQ(pexClearErrStatus(), PEX_STATUS_BAD_MEM);
      ASSERT_EQ(records.size(), 1u);
      EXPECT_EQ(records[0].code, PEX_STATUS_BAD_MEM);
      EXPECT_EQ(records[0].index, static_cast<int32_t>(i) + 2);
      EXPECT_EQ(std::string(records[0].func_name), front().public_name());
      if (!has_scalar || operands[i] != 1) {
        EXPECT_EQ(call(0), 0);
      }
      EXPECT_EQ(pexGetErrStatus(), 0);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, VectorFunction, testing::Range<size_t>(0, FrontFunctions().size()),
                         [](const auto& info) {
                           return FrontFunctions()[info.param].public_name();
                         });

// ---- The thread's words around calls. ----

uint32_t seen_mode;

int ChangeMode(PexErrorContext*) {
  seen_mode = pexGetMode();
  pexSetMode(PEX_ERRMODE_STDERR);
  return 1;
}

TEST(ModeOfACall, StandsInForTheThreadsAndGoesWithTheCall) {
  const FreshThread fresh;
  const double a[2] = {0, 1};
  double r[2];
  pexSetErrorCallBack(ChangeMode);
  pexSetMode(PEX_ERRMODE_ERRNO | PEX_ACCURACY_LA);
  const uint32_t before = pexGetMode();
  errno = 0;
  EXPECT_EQ(vdLnMode(2, a, r, PEX_ERRMODE_CALLBACK | PEX_ACCURACY_HA | 0x10000), 0);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(seen_mode, PEX_ERRMODE_CALLBACK | PEX_ACCURACY_LA);
  EXPECT_EQ(pexGetMode(), before);
  EXPECT_EQ(pexGetErrStatus(), PEX_STATUS_SINGULARITY);
  // The thread's own: errno and no callback.
  seen_mode = 0;
  EXPECT_EQ(vdLnMode(2, a, r, 0), 0);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(seen_mode, 0u);
}

TEST(Pieces, LeaveTheBaseOfTheThreadAsItWas) {
  const FreshThread fresh;
  std::vector<double> a(100, 1.0), r(100);
  a[90] = 0;
  pexSetErrorCallBack(Keep);
  pexquo_front::piece = 16;
  const auto indices = [&](const void* base) {
    records.clear();
    _pexSetInterfInputVectorPointer(base);
    EXPECT_EQ(vdLn(50, a.data() + 50, r.data()), 0);  // in pieces
    EXPECT_EQ(vdLn(10, a.data() + 85, r.data()), 0);  // at once, with the base that is left
    std::vector<int32_t> found;
    for (const PexErrorContext& record : records) found.push_back(record.index);
    return found;
  };
  EXPECT_EQ(indices(nullptr), (std::vector<int32_t>{40, 5}));
  EXPECT_EQ(indices(a.data()), (std::vector<int32_t>{90, 90}));
  EXPECT_EQ(indices(a.data() + 80), (std::vector<int32_t>{10, 10}));
  EXPECT_EQ(indices(a.data() + 50), (std::vector<int32_t>{40, 40}));
  // A base with the low 34 bits zero looks to a null array as if there were none.
  const auto address = reinterpret_cast<uintptr_t>(a.data());
  const auto from = static_cast<int32_t>((address & 0x3FFFFFFFF) / sizeof(double)) + 90;
  const auto* round = reinterpret_cast<const void*>(address & ~uintptr_t{0x3FFFFFFFF});
  EXPECT_EQ(indices(round), (std::vector<int32_t>{from, from}));
  // Nothing else of the thread changes.
  pexSetMode(PEX_ERRMODE_IGNORE | PEX_ACCURACY_LA);
  pexSetErrStatus(4711);
  EXPECT_EQ(vdExp(50, a.data(), r.data()), 0);
  EXPECT_EQ(pexGetMode(), PEX_ERRMODE_IGNORE | PEX_ACCURACY_LA);
  EXPECT_EQ(pexGetErrStatus(), 4711);
  EXPECT_EQ(pexGetErrorCallBack(), Keep);
}

TEST(Message, NamesTheFunctionAndTheParameter) {
  const FreshThread fresh;
  pexSetMode(PEX_ERRMODE_STDERR);
  testing::internal::CaptureStderr();
  double r[1];
  vdExp(-1, r, r);
  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_EQ(text, "pexquo: vdExp: bad array length (parameter 1)\n");
}

// ---- Copies. ----

template <typename T>
struct Copies;
template <>
struct Copies<double> {
  static constexpr auto PackI = vdPackI;
  static constexpr auto PackV = vdPackV;
  static constexpr auto PackM = vdPackM;
  static constexpr auto UnpackI = vdUnpackI;
  static constexpr auto UnpackV = vdUnpackV;
  static constexpr auto UnpackM = vdUnpackM;
  static constexpr auto UnpackMMode = vdUnpackMMode;
  static constexpr const char* kPackV = "vdPackV";
};
template <>
struct Copies<float> {
  static constexpr auto PackI = vsPackI;
  static constexpr auto PackV = vsPackV;
  static constexpr auto PackM = vsPackM;
  static constexpr auto UnpackI = vsUnpackI;
  static constexpr auto UnpackV = vsUnpackV;
  static constexpr auto UnpackM = vsUnpackM;
  static constexpr auto UnpackMMode = vsUnpackMMode;
  static constexpr const char* kPackV = "vsPackV";
};

template <typename T>
class Copying : public testing::Test {};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(Copying, Reals);

TYPED_TEST(Copying, MovesTheChosenElements) {
  using T = TypeParam;
  using C = Copies<T>;
  const T a[6] = {1, 2, 3, 4, 5, 6};
  const int64_t index[3] = {5, 0, 2}, mask[6] = {0, int64_t{1} << 40, 0, -1, 0, 0};
  using Array = std::vector<T>;
  Array y(3);
  EXPECT_EQ(C::PackI(3, a, 2, y.data()), 0);
  EXPECT_EQ(y, (Array{1, 3, 5}));
  EXPECT_EQ(C::PackI(3, a + 5, -2, y.data()), 0);
  EXPECT_EQ(y, (Array{6, 4, 2}));
  EXPECT_EQ(C::PackV(3, a, index, y.data()), 0);
  EXPECT_EQ(y, (Array{6, 1, 3}));
  EXPECT_EQ(C::PackM(6, a, mask, y.data()), 0);
  EXPECT_EQ(y, (Array{2, 4, 3}));
  Array z(6);
  EXPECT_EQ(C::UnpackI(3, a, z.data(), 2), 0);
  EXPECT_EQ(z, (Array{1, 0, 2, 0, 3, 0}));
  z.assign(6, 0);
  EXPECT_EQ(C::UnpackV(3, a, z.data(), index), 0);
  EXPECT_EQ(z, (Array{2, 0, 3, 0, 0, 1}));
  z.assign(6, 0);
  EXPECT_EQ(C::UnpackM(6, a, z.data(), mask), 0);
  EXPECT_EQ(z, (Array{0, 1, 0, 2, 0, 0}));
}

TYPED_TEST(Copying, RefusesAsFunctionsDo) {
  using C = Copies<TypeParam>;
  const FreshThread fresh;
  TypeParam a[2] = {1, 2}, y[2] = {7, 7};
  const int64_t index[2] = {0, 1};
  records.clear();
  pexSetErrorCallBack(Keep);
  EXPECT_EQ(C::PackV(2, a, nullptr, y), PEX_STATUS_BAD_MEM);
  EXPECT_EQ(C::PackV(-2, a, index, y), PEX_STATUS_BAD_SIZE);
  EXPECT_EQ(C::PackI(2, a, 1, nullptr), PEX_STATUS_BAD_MEM);
  EXPECT_EQ(C::PackV(0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(C::UnpackMMode(2, nullptr, y, index, PEX_ERRMODE_IGNORE), PEX_STATUS_BAD_MEM);
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(std::string(records[0].func_name), C::kPackV);
  EXPECT_EQ(records[0].index, 3);
  EXPECT_EQ(records[1].index, 1);
  EXPECT_EQ(records[2].index, 4);
  EXPECT_EQ(y[0], 7);
}

}  // namespace
