#include "cli/source.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "cli/failure.h"
#include "cli/numbers.h"
#include "cli/reader.h"
#include "cli/text_source.h"

namespace cli {
namespace {

uint32_t Swapped(uint32_t x) { return __builtin_bswap32(x); }
uint64_t Swapped(uint64_t x) { return __builtin_bswap64(x); }

class NpySource : public Source {
 public:
  explicit NpySource(std::unique_ptr<Reader> reader)
      : reader_(std::move(reader)), header_(ReadNpyHeader(*reader_)) {
    if (header_.count == 0) ExpectEnd();
  }

  size_t Read(double* x, size_t n) override { return ReadAs(x, n); }
  size_t Read(float* x, size_t n) override { return ReadAs(x, n); }
  uint64_t LineOf(size_t) const override { return 0; }
  const NpyShape* shape() const override { return &header_.shape; }
  int parts() const override { return header_.parts; }
  char natural_type() const override {
    const bool single = header_.kind == 'f' && header_.width == 4;
    return parts() == 2 ? (single ? 'c' : 'z') : (single ? 's' : 'd');
  }
  const std::string& name() const override { return reader_->name(); }

 private:
  void ExpectEnd() {
    if (!reader_->Peek(1).empty()) Fail(name(), ": bytes follow the .npy array");
  }

  template <typename T>
  size_t ReadAs(T* x, size_t n) {
    const size_t count = static_cast<size_t>(std::min<uint64_t>(n, header_.count - done_));
    if (count == 0) return 0;
    const size_t numbers = count * static_cast<size_t>(parts());
    if (header_.width == 4) {
      header_.kind == 'f' ? Convert<float, uint32_t>(x, numbers)
                          : Convert<int32_t, uint32_t>(x, numbers);
    } else {
      header_.kind == 'f' ? Convert<double, uint64_t>(x, numbers)
                          : Convert<int64_t, uint64_t>(x, numbers);
    }
    done_ += count;
    if (done_ == header_.count) ExpectEnd();
    return count;
  }

  template <typename From, typename Word, typename T>
  void Convert(T* x, size_t numbers) {
    constexpr size_t kBatch = 4096;
    Word words[kBatch];
    const auto element = [&](size_t number) {
      return done_ + number / static_cast<size_t>(parts());
    };
    for (size_t first = 0; first < numbers; first += kBatch) {
      const size_t batch = std::min(kBatch, numbers - first);
      const size_t got = reader_->Read(words, batch * sizeof(Word));
      if (got < batch * sizeof(Word)) {
        Fail(name(), ": the .npy array is cut short: ", element(first + got / sizeof(Word)), " of ",
             header_.count, " elements are there");
      }
      for (size_t i = 0; i < batch; ++i) {
        const Word word = header_.big_endian ? Swapped(words[i]) : words[i];
        const From value = std::bit_cast<From>(word);
        x[first + i] = static_cast<T>(value);
        if constexpr (sizeof(From) > sizeof(T)) {
          if (std::isinf(x[first + i]) && !std::isinf(static_cast<double>(value))) {
            Fail(name(), ": element ", element(first + i), ": ",
                 NumberText(static_cast<double>(value)),
                 " is beyond the range of single precision");
          }
        }
      }
    }
  }

  std::unique_ptr<Reader> reader_;
  NpyHeader header_;
  uint64_t done_ = 0;  // elements
};

}  // namespace

std::unique_ptr<Source> OpenSource(const std::string& path, const TextOptions& options) {
  auto reader = std::make_unique<Reader>(path);
  if (reader->Peek(kNpyMagic.size()) == kNpyMagic || path.ends_with(".npy")) {
    if (!options.column.empty() && options.text_only)
      Fail(reader->name(), ": --column is for text, not for .npy files");
    return std::make_unique<NpySource>(std::move(reader));
  }
  return MakeTextSource(std::move(reader), options);
}

}  // namespace cli
