// A random stream as an object: one lock, status codes as exceptions, and words drawn ahead for
// NumPy's generators.
#ifndef PYTHON_MODULE_STREAM_H_
#define PYTHON_MODULE_STREAM_H_

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"
#include "python/module/numpy.h"

namespace pexquo::python {

// An exception of the given type. (Thrown as a C++ exception, set in module.cc.)
struct Failure {
  PyObject* type;
  std::string text;
};

// Throws for a negative status; `what` begins the sentence.
void Check(int32_t status, std::string_view what);

class Stream {
 public:
  // `member` of the generator of that name, seeded with the words.
  Stream(std::string_view generator, int64_t member, const std::vector<uint32_t>& seed);
  // From what Serialize() gave: state and chunks exactly.
  explicit Stream(std::string_view bytes);
  // Takes a stream over; the identifier has to be of a generator in the catalogue.
  explicit Stream(StreamState* state);
  ~Stream();
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  // Zeros: an object that Python made by __new__ alone has no state, which Require() refuses.
  static void* operator new(size_t bytes) { return std::memset(::operator new(bytes), 0, bytes); }
  static void operator delete(void* stream) { ::operator delete(stream); }
  void Require() const;

  std::string_view generator() const {
    Require();
    return generator_->name;
  }
  int32_t member() const {
    Require();
    return member_;
  }
  // 32-bit words of one raw output.
  int raw_words() const {
    Require();
    return properties_.WordBytes / 4;
  }

  // The stream alone, from construction to destruction, with what was drawn ahead given back.
  // Never waits with the interpreter's lock in hand; lets go of it for the whole time if `release`.
  class Access {
   public:
    Access(Stream& stream, bool release);
    ~Access();
    Access(const Access&) = delete;
    Access& operator=(const Access&) = delete;
    StreamState* state() const { return stream_.state_; }

   private:
    Stream& stream_;
    PyThreadState* released_ = nullptr;
  };

  // The lock alone, for holders that come back through NextWord(); recursive.
  void Lock();
  void Unlock() { mutex_.unlock(); }

  // Back to what Serialize() gave of a stream of the same generator. Throws.
  void Restore(std::string_view bytes);

  // The layout of a stream file (quo.h) with the chunks in the order of the stream.
  std::string Serialize();

  // The next 32-bit word of the generator, in the order documented in bit_generator.py. The caller
  // holds the lock.
  uint32_t NextWord() {
    if (next_ == count_) [[unlikely]] {
      DrawAhead();
    }
    return words_[next_++];
  }

 private:
  static constexpr uint32_t kAhead = 1024;

  void Adopt();
  size_t state_bytes() const { return static_cast<size_t>(properties_.StateSize) - 16; }
  int32_t Words(int32_t n, uint32_t* words);
  void DrawAhead();
  // Puts the stream where its reader believes it to be.
  void GiveBack();

  StreamState* state_ = nullptr;
  const quo::Generator* generator_ = nullptr;
  int32_t member_ = 0;
  BrngProperties properties_{};
  std::recursive_mutex mutex_;
  std::array<uint32_t, kAhead> words_;
  uint32_t next_ = 0, count_ = 0;
  std::vector<char> before_;  // the state before the words drawn ahead
};

// Loads a stream file.
std::unique_ptr<Stream> LoadStream(const std::string& path);
void SaveStream(Stream& stream, const std::string& path);

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_STREAM_H_
