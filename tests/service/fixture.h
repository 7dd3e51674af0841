// A test on a thread in its initial state: default mode, no status, no callback, no input vector.
#ifndef TESTS_SERVICE_FIXTURE_H_
#define TESTS_SERVICE_FIXTURE_H_

#include <gtest/gtest.h>

#include <thread>

#include "pexquo/pex.h"

// Runs `body` on a thread of its own, so that nothing another test did to the state can matter.
template <class F>
void OnFreshThread(F body) {
  std::thread(body).join();
}

class CleanThread : public testing::Test {
 protected:
  void SetUp() override { Reset(); }
  void TearDown() override { Reset(); }

 private:
  static void Reset() {
    _pexSetErrorCallBack(nullptr);
    _pexSetInterfInputVectorPointer(nullptr);
    _pexSetMode(PEX_MODE_DEFAULT);
    _pexClearErrStatus();
  }
};

#endif  // TESTS_SERVICE_FIXTURE_H_
