// Vector math inside a distribution call, without a trace of it for the caller.
//
// While a VectorMath lives, special elements of the vector functions reach the given callback and
// nothing else: the error mode is 4096, callback only. At its end the thread's callback, mode,
// status, errno and control words are as before, and so are the exception flags, inexact aside.
// The callback replaces an element by writing both results of its record and returning 0.
#ifndef QUO_KERNEL__KERNEL_BORROW_H_
#define QUO_KERNEL__KERNEL_BORROW_H_

#include <cerrno>
#include <cstdint>

#include "pex_core/_kernel/control.h"
#include "pex_core/mode/pex_mode.h"
#include "pexquo/pex.h"

namespace quo {

// errno and the exception flags but inexact stay as they are, the computation is in
// round-to-nearest without flushing.
class QuietCall {
 public:
  QuietCall() = default;
  ~QuietCall() { errno = errno_; }
  QuietCall(const QuietCall&) = delete;
  QuietCall& operator=(const QuietCall&) = delete;

 private:
  const pex::QuietGuard quiet_;
  const int errno_ = errno;
};

class VectorMath {
 public:
  explicit VectorMath(PexErrorCallBack replace) {
    thread_.mode = (mode_ & ~PEX_MODE_ERRORS) | PEX_ERRMODE_CALLBACK;
    thread_.callback = replace;
  }
  ~VectorMath() {
    thread_.callback = callback_;
    thread_.mode = mode_;
    thread_.status = status_;
  }
  VectorMath(const VectorMath&) = delete;
  VectorMath& operator=(const VectorMath&) = delete;

 private:
  const QuietCall quiet_;  // the flags come back after all else
  const pex::ThreadState thread_ = pex::CurrentThread();
  const int32_t status_ = thread_.status;
  const uint32_t mode_ = thread_.mode;
  const PexErrorCallBack callback_ = thread_.callback;
};

// For callbacks: the element becomes `value`.
inline int ReplaceBy(PexErrorContext* record, double value) {
  record->res1 = record->res2 = value;
  return 0;
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_BORROW_H_
