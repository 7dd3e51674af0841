// Element errors: status, callback, errno, message, exception flag, and the write-back of results.
#include "pex_core/errors/pex_errors.h"

#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "pex_core/_kernel/control.h"
#include "pex_core/mode/pex_mode.h"
#include "pexquo/kro.h"
#include "pexquo/pex.h"

// The record is a binary interface.
static_assert(offsetof(PexErrorContext, arg1) == 8 && offsetof(PexErrorContext, res1) == 24);
static_assert(offsetof(PexErrorContext, func_name) == 40 &&
              offsetof(PexErrorContext, func_name_len) == 104);

namespace {

// Operands whose arithmetic raises the flags: 0/0 invalid, finite/0 divide-by-zero, a subnormal
// squared underflow and inexact, and a quiet NaN squared nothing (overflow raises no flag here).
constexpr uint64_t _pexdSpecialTab[6] = {0x0000000100100000, 0xFFFFFFFF7FEFFFFF,
                                         0x0000000000000000, 0x000000003FF00000,
                                         0xFFFFFFFFFFFFFE94, 0x0000000000003FFD};

void SetErrno(int32_t code) {
  switch (code) {
    case PEX_STATUS_OK:
      errno = 0;
      break;
    case PEX_STATUS_DOMAIN:
      errno = EDOM;
      break;
    case PEX_STATUS_SINGULARITY:
    case PEX_STATUS_OVERFLOW:
    case PEX_STATUS_UNDERFLOW:
      errno = ERANGE;
      break;
    case PEX_STATUS_BAD_SIZE:
      errno = EINVAL;
      break;
    case PEX_STATUS_BAD_MEM:
      errno = EACCES;
      break;
    default:
      errno = EFAULT;
      break;
  }
}

// The record's name may lack a terminator when it has 64 characters.
struct PrintableName {
  explicit PrintableName(const PexErrorContext& record) {
    std::memcpy(text, record.func_name, sizeof(record.func_name));
    text[sizeof(record.func_name)] = '\0';
  }
  char text[sizeof(PexErrorContext::func_name) + 1];
};

void PrintValues(const PexErrorContext& record) {
  const bool one_argument = record.arg1 == record.arg2 || record.arg2 == 0;
  const bool one_result = record.res1 == record.res2 || record.res2 == 0;
  // The four shapes' lines follow each other in the catalogue.
  int32_t id = one_argument ? (one_result ? 742 : 744) : (one_result ? 747 : 750);
  const auto line = [&](double value) { kro_serv_kro_print(1, id++, 2, record.index, value); };
  line(record.arg1);
  if (!one_argument) line(record.arg2);
  line(record.res1);
  if (!one_result) line(record.res2);
}

void PrintLines(const PexErrorContext& record) {
  const PrintableName name(record);
  switch (record.code) {
    case PEX_STATUS_OK:
      return;
    case PEX_STATUS_BAD_SIZE:
      kro_serv_kro_print(1, 735, 2, name.text, record.index);
      return;
    case PEX_STATUS_BAD_MEM:
      kro_serv_kro_print(1, 736, 1, name.text);
      return;
    default:
      break;
  }
  const bool known = record.code >= PEX_STATUS_DOMAIN && record.code <= PEX_STATUS_UNDERFLOW;
  kro_serv_kro_print(1, known ? 736 + record.code : 741, 1, name.text);
  PrintValues(record);
}

// The lines of one report stay together, and a message that fails to get out changes no errno.
void Print(const PexErrorContext& record) {
  const int saved = errno;
  flockfile(stderr);
  PrintLines(record);
  funlockfile(stderr);
  errno = saved;
}

void RaiseFlags(int32_t code) {
  const auto operand = [](int i) {
    volatile double x = std::bit_cast<double>(_pexdSpecialTab[i]);
    return x;
  };
  [[maybe_unused]] volatile double sink;
  switch (code) {
    case PEX_STATUS_DOMAIN:
      sink = operand(2) / operand(2);
      break;
    case PEX_STATUS_SINGULARITY:
      sink = operand(3) / operand(2);
      break;
    case PEX_STATUS_OVERFLOW:
      sink = operand(1) * operand(1);
      break;
    case PEX_STATUS_UNDERFLOW:
      sink = operand(0) * operand(0);
      break;
    default:
      return;
  }
}

// What the standard handler does, the message apart.
void SetErrnoAndFlags(uint32_t mode, int32_t code) {
  if (mode & PEX_ERRMODE_ERRNO) SetErrno(code);
  if (mode & PEX_ERRMODE_EXCEPT) RaiseFlags(code);
}

bool CarriesElement(int32_t code) {
  return code != PEX_STATUS_BAD_SIZE && code != PEX_STATUS_BAD_MEM;
}

int32_t CopyName(const char* name, char* to) {
  constexpr int32_t kLimit = sizeof(PexErrorContext::func_name);
  int32_t length = 0;
  while (length < kLimit && name[length] != '\0') {
    to[length] = name[length];
    ++length;
  }
  if (length < kLimit) to[length] = '\0';
  return length;
}

// What the arrays of an element hold; null where the code carries none.
template <typename T>
int ReportFromArrays(int32_t code, int32_t index, const T* a1, const T* a2, T* r1, T* r2,
                     const char* name) {
  const pex::RoundingGuard guard;  // widening and narrowing must not flush
  pex::ErrorElement<T> element{};
  if (CarriesElement(code)) {
    element = {a1[index], a2[index], r1 + index, r2 + index};
  }
  return pex::ReportError(code, index, a1, element, name);
}

}  // namespace

namespace pex {

template <typename T>
int ReportError(int32_t code, int32_t index, const T* args, const ErrorElement<T>& element,
                const char* name) {
  const ThreadState thread = CurrentThread();
  thread.status = code;
  uint32_t mode = thread.mode;
  if ((mode & PEX_MODE_ERRORS) == PEX_ERRMODE_IGNORE) return PEX_ERRMODE_IGNORE;
  const PexErrorCallBack callback = mode & 0xF000 ? thread.callback : nullptr;
  if (callback == nullptr && !(mode & PEX_ERRMODE_STDERR)) {
    // Nobody will see a record, nor change its results.
    const ControlGuard guard;
    SetErrnoAndFlags(mode, code);
    return static_cast<int>(mode);
  }

  PexErrorContext record;
  record.code = code;
  record.index = index;
  if (const void* base = InputVectorBase()) {
    const ptrdiff_t bytes = reinterpret_cast<const char*>(args) - static_cast<const char*>(base);
    constexpr int kShift = std::bit_width(sizeof(T)) - 1;
    record.index = static_cast<int32_t>(index + (bytes >> kShift));
  }
  record.func_name_len = CopyName(name, record.func_name);
  if (CarriesElement(code)) {
    record.arg1 = element.arg1;
    record.arg2 = element.arg2;
    record.res1 = *element.res1;
    record.res2 = *element.res2;
  }

  if (callback != nullptr) {
    const CallbackGuard guard;
    if (const int dealt_with = callback(&record)) return dealt_with;
  }
  mode = thread.mode;  // the callback may have changed it
  int result = static_cast<int>(mode);
  if (mode & 0x0F00) result = _pexStdErrorHandler(&record);

  if (CarriesElement(code)) {  // in this order: where both are one array, the first result wins
    *element.res2 = static_cast<T>(record.res2);
    *element.res1 = static_cast<T>(record.res1);
  }
  return result;
}

template int ReportError(int32_t, int32_t, const double*, const ErrorElement<double>&, const char*);
template int ReportError(int32_t, int32_t, const float*, const ErrorElement<float>&, const char*);

}  // namespace pex

extern "C" {

int _pexdError(int32_t code, int32_t index, const double* a1, const double* a2, double* r1,
               double* r2, const char* name) {
  return ReportFromArrays(code, index, a1, a2, r1, r2, name);
}

int _pexsError(int32_t code, int32_t index, const float* a1, const float* a2, float* r1, float* r2,
               const char* name) {
  return ReportFromArrays(code, index, a1, a2, r1, r2, name);
}

int _pexStdErrorHandler(PexErrorContext* record) {
  // With denormals-are-zero, values would compare as zeros and the flags' operands would be zeros.
  const pex::ControlGuard guard;
  const uint32_t mode = _pexGetMode();
  if (mode & PEX_ERRMODE_STDERR) Print(*record);
  SetErrnoAndFlags(mode, record->code);
  return static_cast<int>(mode);
}

int kro_pex_service_strcat1(const char* first, const char* second, char* dest) {
  const int first_length = kro_pex_service_strlen1(first);
  const int second_length = kro_pex_service_strlen1(second);
  std::memcpy(dest, first, static_cast<size_t>(first_length));
  std::memcpy(dest + first_length, second, static_cast<size_t>(second_length) + 1);
  return first_length + second_length;
}

int kro_pex_service_strlen1(const char* s) { return static_cast<int>(std::strlen(s)); }
}
