#include "front/thread_state.h"

namespace pexquo_front {
namespace {

thread_local int32_t seen_index;

int KeepIndex(PexErrorContext* record) {
  seen_index = record->index;
  return 1;  // dealt with: no errno, no message, no flag
}

// An address that no array of a caller has: a base is a multiple of 16 GiB away from null more
// easily than from here.
const float kNowhere = 0;

// What the thread's input-vector base adds to the index of a record on `array`, modulo 2^32; 0
// without a base (and with one that lies a multiple of 16 GiB from `array`). The base can be set
// but not read, so a record is made that shows it; status, callback and mode are put back.
int32_t OffsetOfBase(const float* array) {
  const uint32_t mode = _pexGetMode();
  const int32_t status = _pexGetErrStatus();
  const PexErrorCallBack callback = _pexSetErrorCallBack(KeepIndex);
  _pexsError(PEX_STATUS_BAD_SIZE, 0, array, nullptr, nullptr, nullptr, "");
  _pexSetErrorCallBack(callback);
  _pexSetErrStatus(status);
  _pexSetMode(mode);
  return seen_index;
}

}  // namespace

int64_t piece = int64_t{1} << 30;

int32_t Refuse(const char* name, int32_t status, int32_t parameter) {
  const uint32_t offset = static_cast<uint32_t>(OffsetOfBase(nullptr));
  const uint32_t index = static_cast<uint32_t>(parameter) - offset;
  _pexsError(status, static_cast<int32_t>(index), nullptr, nullptr, nullptr, nullptr, name);
  return status;
}

WholeArray::WholeArray(const void* array) : had_base_(OffsetOfBase(&kNowhere) != 0) {
  if (!had_base_) _pexSetInterfInputVectorPointer(array);
}

WholeArray::~WholeArray() {
  if (!had_base_) _pexSetInterfInputVectorPointer(nullptr);
}

}  // namespace pexquo_front
