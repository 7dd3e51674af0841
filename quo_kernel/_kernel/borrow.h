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
  explicit VectorMath(PexErrorCallBack replace)
      : status_(_pexGetErrStatus()),
        mode_(_pexSetMode(PEX_ERRMODE_CALLBACK)),
        callback_(_pexSetErrorCallBack(replace)) {}
  ~VectorMath() {
    _pexSetErrorCallBack(callback_);
    _pexSetMode(mode_);  // last, as setting a callback switches a bit of the mode
    _pexSetErrStatus(status_);
  }
  VectorMath(const VectorMath&) = delete;
  VectorMath& operator=(const VectorMath&) = delete;

 private:
  const QuietCall quiet_;  // the flags come back after all else
  const int32_t status_;
  const uint32_t mode_;
  const PexErrorCallBack callback_;
};

// For callbacks: the element becomes `value`.
inline int ReplaceBy(PexErrorContext* record, double value) {
  record->res1 = record->res2 = value;
  return 0;
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_BORROW_H_
