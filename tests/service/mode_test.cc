// Mode word, status and callback of a thread.
#include <cstdint>

#include "tests/service/fixture.h"

namespace {

int Nothing(PexErrorContext*) { return 0; }
int Other(PexErrorContext*) { return 0; }

TEST(Mode, FreshThreadHasTheDefaults) {
  OnFreshThread([] {
    EXPECT_EQ(_pexGetMode(), 0x1A02u);
    EXPECT_EQ(_pexGetErrStatus(), 0);
    EXPECT_EQ(_pexGetErrorCallBack(), nullptr);
  });
  // Each slot must get its initial value whichever operation touches it first.
  OnFreshThread([] { EXPECT_EQ(_pexSetMode(0x3), 0x1A02u); });
  OnFreshThread([] { EXPECT_EQ(_pexSetErrStatus(9), 0); });
  OnFreshThread([] { EXPECT_EQ(_pexClearErrStatus(), 0); });
  OnFreshThread([] {
    EXPECT_EQ(_pexSetErrorCallBack(Nothing), nullptr);
    EXPECT_EQ(_pexGetMode(), 0x1A02u);
  });
  OnFreshThread([] {
    EXPECT_EQ(_pexClearErrorCallBack(), nullptr);
    EXPECT_EQ(_pexGetMode(), 0x0A02u);
  });
}

class ModeState : public CleanThread {};

TEST_F(ModeState, FieldsAreReplacedOneByOne) {
  static constexpr struct {
    uint32_t before, set, after;
  } kCases[] = {
      {0x1A02, 0, 0x1A02},         // no field has a bit: nothing changes
      {0x1A02, 0x3, 0x1A03},       // accuracy alone
      {0x1A02, 0x1, 0x1A01},       // replaced, not merged bit by bit
      {0x3FA0F, 0x100, 0x3010F},   // error mode alone
      {0x1A02, 0x10000, 0x11A02},  // third field alone
      {0x31A02, 0x20000, 0x21A02},   {0x1A02, 0x40000, 0x1A02},  // outside all fields
      {0x1A02, 0xFFFCF0F0, 0xF002},  // only 0xF000 of these bits belongs to a field
      {0x1A02, 0xFFFFFFFF, 0x3FF0F}, {0x3FF0F, 0x21A01, 0x21A01},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::Message() << std::hex << c.before << " set " << c.set);
    OnFreshThread([&] {
      _pexSetMode(c.before);
      EXPECT_EQ(_pexSetMode(c.set), c.before & 0x3FF0F);
      EXPECT_EQ(_pexGetMode(), c.after);
    });
  }
}

TEST_F(ModeState, StatusIsStoredUncheckedAndReturnedOnce) {
  for (const int32_t status : {5, -1, 0, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(_pexSetErrStatus(status), 0);
    EXPECT_EQ(_pexGetErrStatus(), status);
    EXPECT_EQ(_pexClearErrStatus(), status);
    EXPECT_EQ(_pexClearErrStatus(), 0);
  }
}

TEST_F(ModeState, TheCallbackSwitchesItsModeBit) {
  EXPECT_EQ(_pexSetErrorCallBack(Nothing), nullptr);
  EXPECT_EQ(_pexGetMode(), 0x1A02u);
  EXPECT_EQ(_pexSetErrorCallBack(Other), &Nothing);
  EXPECT_EQ(_pexGetErrorCallBack(), &Other);
  EXPECT_EQ(_pexClearErrorCallBack(), &Other);
  EXPECT_EQ(_pexGetErrorCallBack(), nullptr);
  EXPECT_EQ(_pexGetMode(), 0x0A02u);

  _pexSetMode(0x20100);
  _pexSetErrorCallBack(Nothing);
  EXPECT_EQ(_pexGetMode(), 0x21102u);
  _pexSetErrorCallBack(nullptr);
  EXPECT_EQ(_pexGetMode(), 0x20102u);

  // The error mode cannot become empty: as its only bit, the callback bit stays.
  _pexSetMode(0x1000);
  _pexSetErrorCallBack(Nothing);
  EXPECT_EQ(_pexClearErrorCallBack(), &Nothing);
  EXPECT_EQ(_pexGetMode() & PEX_MODE_ERRORS, 0x1000u);
}

TEST_F(ModeState, TheInputVectorPointerIsHandedBack) {
  const double x = 0;
  EXPECT_EQ(_pexSetInterfInputVectorPointer(&x), &x);
  EXPECT_EQ(_pexSetInterfInputVectorPointer(nullptr), nullptr);
}

TEST(Version, IsThree) {
  EXPECT_EQ(dll_cpu_version(), 3);
  EXPECT_EQ(dll_cpu_version(), 3);
}

}  // namespace
