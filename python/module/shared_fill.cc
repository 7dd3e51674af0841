#include "python/module/shared_fill.h"

#include <algorithm>
#include <new>
#include <optional>
#include <span>

#include "pexquo/pexquo.hpp"
#include "python/module/loops.h"
#include "python/module/stream.h"

namespace pexquo::python {
namespace {

using detail::Takes;

constexpr npy_intp kShare = 16384;

// How many outputs of the generator a number takes.
Takes TakesOf(std::string_view distribution, uint32_t method) {
  if (distribution == "gaussian") return detail::TakesOf(static_cast<normal_method>(method));
  constexpr std::pair<std::string_view, Takes> kTable[] = {
      {"uniform", uniform::kTakes},     {"exponential", exponential::kTakes},
      {"laplace", laplace::kTakes},     {"weibull", weibull::kTakes},
      {"cauchy", cauchy::kTakes},       {"rayleigh", rayleigh::kTakes},
      {"lognormal", lognormal::kTakes}, {"gumbel", gumbel::kTakes},
      {"bernoulli", bernoulli::kTakes}, {"geometric", geometric::kTakes},
  };
  for (const auto& [name, takes] : kTable) {
    if (name == distribution) return takes;
  }
  return Takes::varying;
}

// A distribution of the catalogue as pexquo::parallel knows them.
class Drawing : public detail::Distribution<Drawing, double> {
 public:
  static constexpr std::string_view kName = "pexquo";

  Drawing(const quo::Sampler& sampler, uint32_t method, const double* parameters)
      : sampler_(sampler), method_(method), parameters_(parameters) {}

  Takes takes() const { return TakesOf(sampler_.distribution->name, method_); }

  // Whether drawing a number takes no longer than drawing the words that lead to the next block.
  bool is_light() const {
    return sampler_.distribution->name == "uniform" || sampler_.distribution->name == "bernoulli";
  }

  template <typename T>
  int32_t draw(QuoStream* stream, int64_t n, T* r) const {
    constexpr int64_t kMostPerCall = int64_t{1} << 30;
    int32_t status = 0;
    for (; n > 0 && status >= 0; n -= kMostPerCall, r += kMostPerCall) {
      status = sampler_.draw(method_, stream, static_cast<int32_t>(std::min(n, kMostPerCall)), r,
                             parameters_);
    }
    return status;
  }

 private:
  const quo::Sampler& sampler_;
  uint32_t method_;
  const double* parameters_;
};

template <typename T>
void Fill(const Drawing& drawing, stream& from, npy_intp n, char* r) {
  parallel(Threads(), kShare)
      .fill(drawing, from, std::span(reinterpret_cast<T*>(r), static_cast<size_t>(n)));
}

}  // namespace

bool FillShared(const quo::Sampler& sampler, uint32_t method, StreamState* state, npy_intp n,
                char* r, const double* parameters) {
  if (Threads() == 1 || n < 2 * kShare) return false;
  const Drawing drawing(sampler, method, parameters);
  // The stream is another's: taken over for the time of the fill.
  struct Borrowed {
    ~Borrowed() { static_cast<void>(stream.release()); }
    pexquo::stream stream;
  } borrowed{stream::adopt(state)};
  const auto how = detail::AdvanceOf(borrowed.stream, drawing.takes(), drawing.is_light());
  if (how == detail::Advance::none) return false;
  try {
    switch (sampler.type) {
      case 'd':
        Fill<double>(drawing, borrowed.stream, n, r);
        break;
      case 's':
        Fill<float>(drawing, borrowed.stream, n, r);
        break;
      default:
        Fill<int32_t>(drawing, borrowed.stream, n, r);
    }
  } catch (const std::bad_alloc&) {
    throw Failure{PyExc_MemoryError, "no memory"};
  } catch (const std::exception& error) {
    throw Failure{PyExc_RuntimeError, error.what()};
  }
  return true;
}

}  // namespace pexquo::python
