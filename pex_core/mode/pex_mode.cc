// Per-thread state: four independent slots, each created on the thread's first touch and freed with
// the thread. Where a slot's block is stands in a thread-local variable as well, since finding it
// by its key takes longer than some kernels. Without memory for a slot no operation could keep its
// promise, so the process stops with a message.
#include "pex_core/mode/pex_mode.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "pexquo/kro.h"
#include "pexquo/pex.h"

namespace {

// One slot's key: its destructor, and its creation through pthread_once; and the thread's block.
// The variable needs no call to be found, at the price of a place in the static storage of threads.
#define PEX_SLOT_KEY(Slot)                                                 \
  pthread_once_t Slot##_konce = PTHREAD_ONCE_INIT;                         \
  pthread_key_t Slot##_key;                                                \
  [[gnu::tls_model("initial-exec")]] thread_local void* Slot##_block;      \
  void Slot##_destroy(void* block) {                                       \
    Slot##_block = nullptr;                                                \
    kro_serv_kro_free(block);                                              \
  }                                                                        \
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

// The calling thread's block of a slot, created with `initial`.
template <typename T>
[[gnu::noinline]] void* NewBlock(pthread_once_t& once, void (*alloc_key)(), pthread_key_t& key,
                                 T initial, size_t bytes, const char* name) {
  pthread_once(&once, alloc_key);
  auto* value = static_cast<T*>(kro_serv_kro_malloc(bytes, 1));
  if (value == nullptr) Stop(name);
  *value = initial;
  if (pthread_setspecific(key, value) != 0) Stop(name);
  return value;
}

// The calling thread's value of a slot.
#define PEX_SLOT(Slot, T, initial, bytes, name)                                          \
  T& Slot() {                                                                            \
    if (Slot##_block == nullptr) [[unlikely]] {                                          \
      Slot##_block =                                                                     \
          NewBlock<T>(Slot##_konce, Slot##_alloc_key, Slot##_key, initial, bytes, name); \
    }                                                                                    \
    return *static_cast<T*>(Slot##_block);                                               \
  }

PEX_SLOT(Mode, uint32_t, PEX_MODE_DEFAULT, 8, "mode")
PEX_SLOT(ErrStatus, int32_t, 0, 8, "status")
PEX_SLOT(CallBack, PexErrorCallBack, nullptr, 16, "callback")
PEX_SLOT(InputVecorPointer, const void*, nullptr, 16, "input vector")

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
  uint32_t& slot = Mode();
  uint32_t word = slot;
  for (const uint32_t field : {PEX_MODE_ACCURACY, PEX_MODE_ERRORS, PEX_MODE_THIRD}) {
    if (mode & field) word = (word & ~field) | (mode & field);
  }
  return Exchange(slot, word);
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
