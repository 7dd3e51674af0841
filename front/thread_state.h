// The calling thread's mode and input-vector base around one call of the front.
#ifndef FRONT_THREAD_STATE_H_
#define FRONT_THREAD_STATE_H_

#include <cstdint>

#include "pexquo/pexquo.h"

namespace pexquo_front {

// The most elements that a kernel is given at a time. Written by tests alone, which shorten it.
[[gnu::visibility("hidden")]] extern int64_t piece;

// Reports a refused call under its public name, with the number of the wrong parameter as the
// index; returns the status.
int32_t Refuse(const char* name, int32_t status, int32_t parameter);

// Makes an array the thread's input vector while it lives, unless there is one already.
class WholeArray {
 public:
  explicit WholeArray(const void* array);
  ~WholeArray();
  WholeArray(const WholeArray&) = delete;
  WholeArray& operator=(const WholeArray&) = delete;

 private:
  bool had_base_;
};

// The error field of one call. It is never zero in a thread's word, so that setting the old word
// brings it back.
class ModeOfCall {
 public:
  explicit ModeOfCall(uint32_t mode) : old_(_pexSetMode(mode & PEX_MODE_ERRORS)) {}
  ~ModeOfCall() { _pexSetMode(old_ & PEX_MODE_ERRORS); }
  ModeOfCall(const ModeOfCall&) = delete;
  ModeOfCall& operator=(const ModeOfCall&) = delete;

 private:
  uint32_t old_;
};

}  // namespace pexquo_front

#endif  // FRONT_THREAD_STATE_H_
