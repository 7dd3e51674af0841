// The element errors of kernel calls: what NumPy sees as floating-point flags, and what
// pexquo.errors() collects one by one.
#ifndef PYTHON_MODULE_ELEMENT_ERRORS_H_
#define PYTHON_MODULE_ELEMENT_ERRORS_H_

#include <cstdint>
#include <vector>

#include "pexquo/pex.h"

namespace pexquo::python {

struct ElementError {
  int32_t code;   // PEX_STATUS_DOMAIN to PEX_STATUS_UNDERFLOW
  int64_t index;  // of the element in the call
};

// While it lives, the kernels of this thread report to it and to nothing else; the thread's mode
// and callback are then as they were. Ends by raising the flags of the errors seen, overflow
// included, for NumPy to turn into warnings.
class ErrorScope {
 public:
  // `errors`, where not null, receives the errors one by one.
  explicit ErrorScope(std::vector<ElementError>* errors = nullptr);
  ~ErrorScope();
  ErrorScope(const ErrorScope&) = delete;
  ErrorScope& operator=(const ErrorScope&) = delete;

  // An error of the element with that index in the next kernel call.
  void Note(int32_t code, int64_t index);

  // The index of the next kernel call's first element.
  void SetBase(int64_t base) { base_ = base; }

 private:
  static int Report(PexErrorContext* record);

  std::vector<ElementError>* const errors_;
  int64_t base_ = 0;
  uint32_t flags_ = 0;
  ErrorScope* outer_;
  uint32_t mode_ = 0;
  PexErrorCallBack callback_ = nullptr;
  bool restores_ = false;  // mode_ and callback_, at the end
};

// The status code that the exception flags raised since the last ClearFlags() stand for, 0 for
// none: a pole before a domain error, as 0/0 beside x/0 in a complex quotient; then overflow,
// underflow.
void ClearFlags();
uint32_t RaisedFlags();  // invalid, divide-by-zero, overflow and underflow, as bits of MXCSR
uint32_t FlagOf(int32_t code);
void RaiseFlags(uint32_t flags);
int32_t CodeOfFlags();

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_ELEMENT_ERRORS_H_
