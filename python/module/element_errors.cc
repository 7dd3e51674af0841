#include "python/module/element_errors.h"

#include <xmmintrin.h>

#include <cfenv>
#include <cmath>

namespace pexquo::python {
namespace {

constexpr uint32_t kInvalid = 0x01, kDivide = 0x04, kOverflow = 0x08, kUnderflow = 0x10;
static_assert(kInvalid == FE_INVALID && kDivide == FE_DIVBYZERO && kOverflow == FE_OVERFLOW &&
              kUnderflow == FE_UNDERFLOW);
constexpr uint32_t kFlagOfCode[] = {0, kInvalid, kDivide, kOverflow, kUnderflow};

thread_local ErrorScope* innermost = nullptr;

// What the arithmetic of IEEE 754 calls the element. Powers call their poles domain errors, and
// division every zero divisor a pole; an infinity of an infinity is exact, and a NaN of a NaN no
// news.
int32_t CodeOf(const PexErrorContext& record) {
  if (record.code == PEX_STATUS_OVERFLOW || record.code == PEX_STATUS_UNDERFLOW) return record.code;
  if (record.code != PEX_STATUS_DOMAIN && record.code != PEX_STATUS_SINGULARITY)
    return PEX_STATUS_OK;
  if (std::isinf(record.res1)) {
    return std::isinf(record.arg1) ? PEX_STATUS_OK : PEX_STATUS_SINGULARITY;
  }
  return std::isnan(record.arg1) || std::isnan(record.arg2) ? PEX_STATUS_OK : PEX_STATUS_DOMAIN;
}

}  // namespace

// The callback stays with a thread that has none and the default mode: outside of every scope it
// does nothing, so that the thread's C code sees the default. Others get back what they had.
ErrorScope::ErrorScope(std::vector<ElementError>* errors) : errors_(errors), outer_(innermost) {
  mode_ = _pexGetMode();
  callback_ = _pexGetErrorCallBack();
  if (callback_ != Report || mode_ != PEX_MODE_DEFAULT) {
    restores_ = callback_ != nullptr || mode_ != PEX_MODE_DEFAULT;
    if (restores_) _pexSetMode(PEX_ERRMODE_CALLBACK);
    _pexSetErrorCallBack(Report);
  }
  innermost = this;
}

ErrorScope::~ErrorScope() {
  if (restores_) {
    _pexSetErrorCallBack(callback_);
    _pexSetMode(mode_);
  }
  innermost = outer_;
  if (flags_ != 0) RaiseFlags(flags_);
}

int ErrorScope::Report(PexErrorContext* record) {
  if (innermost == nullptr) return 0;
  innermost->Note(CodeOf(*record), record->index);
  return 1;
}

void ErrorScope::Note(int32_t code, int64_t index) {
  if (code == PEX_STATUS_OK) return;
  flags_ |= kFlagOfCode[code];
  if (errors_ != nullptr) errors_->push_back({code, base_ + index});
}

// Of both units, as NumPy sees them: some complex kernels compute in extended precision.
uint32_t RaisedFlags() {
  return static_cast<uint32_t>(std::fetestexcept(kInvalid | kDivide | kOverflow | kUnderflow));
}

uint32_t FlagOf(int32_t code) { return kFlagOfCode[code]; }

// A write of the registers costs more than the test.
void ClearFlags() {
  if (RaisedFlags() == 0) return;
  _mm_setcsr(_mm_getcsr() & ~0x3Fu);
  asm volatile("fnclex");
}

void RaiseFlags(uint32_t flags) { _mm_setcsr(_mm_getcsr() | flags); }

int32_t CodeOfFlags() {
  const uint32_t flags = RaisedFlags();
  for (const int32_t code :
       {PEX_STATUS_SINGULARITY, PEX_STATUS_DOMAIN, PEX_STATUS_OVERFLOW, PEX_STATUS_UNDERFLOW}) {
    if (flags & kFlagOfCode[code]) return code;
  }
  return PEX_STATUS_OK;
}

}  // namespace pexquo::python
