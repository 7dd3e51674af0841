// Per-thread state: four independent slots, each created on the thread's first touch and freed with
// the thread. Without memory for a slot no operation could keep its promise, so the process stops
// with a message.
#include "pex_core/mode/pex_mode.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "pexquo/kro.h"
#include "pexquo/pex.h"

namespace {

// One slot's key: its destructor, and its creation through pthread_once.
#define PEX_SLOT_KEY(Slot)                                                 \
  pthread_once_t Slot##_konce = PTHREAD_ONCE_INIT;                         \
  pthread_key_t Slot##_key;                                                \
  void Slot##_destroy(void* block) { kro_serv_kro_free(block); }           \
  void Slot##_alloc_key() {                                                \
    if (pthread_key_create(&Slot##_key, Slot##_destroy) != 0) Stop(#Slot); \
  }

[[noreturn]] void Stop(const char* slot) {
  std::fprintf(stderr, "pexquo: no memory for the thread's state (%s)\n", slot);
  std::abort();
}

PEX_SLOT_KEY(Mode)
PEX_SLOT_KEY(ErrStatus)
PEX_SLOT_KEY(CallBack)
PEX_SLOT_KEY(InputVecorPointer)

// The calling thread's value of a slot, created with `initial` on first touch.
template <typename T>
T& Slot(pthread_once_t& once, void (*alloc_key)(), pthread_key_t& key, T initial, size_t bytes,
        const char* name) {
  pthread_once(&once, alloc_key);
  auto* value = static_cast<T*>(pthread_getspecific(key));
  if (value == nullptr) {
    value = static_cast<T*>(kro_serv_kro_malloc(bytes, 1));
    if (value == nullptr) Stop(name);
    *value = initial;
    if (pthread_setspecific(key, value) != 0) Stop(name);
  }
  return *value;
}

uint32_t& Mode() {
  return Slot<uint32_t>(Mode_konce, Mode_alloc_key, Mode_key, PEX_MODE_DEFAULT, 8, "mode");
}

int32_t& ErrStatus() {
  return Slot<int32_t>(ErrStatus_konce, ErrStatus_alloc_key, ErrStatus_key, 0, 8, "status");
}

PexErrorCallBack& CallBack() {
  return Slot<PexErrorCallBack>(CallBack_konce, CallBack_alloc_key, CallBack_key, nullptr, 16,
                                "callback");
}

const void*& InputVecorPointer() {
  return Slot<const void*>(InputVecorPointer_konce, InputVecorPointer_alloc_key,
                           InputVecorPointer_key, nullptr, 16, "input vector");
}

// Stores a new value and returns the previous one.
template <typename T>
T Exchange(T& slot, T value) {
  const T old = slot;
  slot = value;
  return old;
}

}  // namespace

namespace pex {
ThreadState CurrentThread() { return {Mode(), ErrStatus(), CallBack()}; }
const void* InputVectorBase() { return InputVecorPointer(); }
}  // namespace pex

extern "C" {

uint32_t _pexGetMode(void) { return Mode(); }

uint32_t _pexSetMode(uint32_t mode) {
  uint32_t& word = Mode();
  const uint32_t old = word;
  for (const uint32_t field : {PEX_MODE_ACCURACY, PEX_MODE_ERRORS, PEX_MODE_THIRD}) {
    if (mode & field) word = (word & ~field) | (mode & field);
  }
  return old;
}

int32_t _pexGetErrStatus(void) { return ErrStatus(); }
int32_t _pexSetErrStatus(int32_t status) { return Exchange(ErrStatus(), status); }
int32_t _pexClearErrStatus(void) { return _pexSetErrStatus(PEX_STATUS_OK); }

PexErrorCallBack _pexGetErrorCallBack(void) { return CallBack(); }

PexErrorCallBack _pexSetErrorCallBack(PexErrorCallBack cb) {
  const PexErrorCallBack old = Exchange(CallBack(), cb);
  const uint32_t mode = _pexGetMode();
  _pexSetMode(cb ? mode | PEX_ERRMODE_CALLBACK : mode & ~PEX_ERRMODE_CALLBACK);
  return old;
}

PexErrorCallBack _pexClearErrorCallBack(void) { return _pexSetErrorCallBack(nullptr); }

const void* _pexSetInterfInputVectorPointer(const void* base) { return InputVecorPointer() = base; }

int dll_cpu_version(void) { return 3; }
}
