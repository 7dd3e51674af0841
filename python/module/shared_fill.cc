#include "python/module/shared_fill.h"

#include <algorithm>
#include <new>
#include <span>
#include <string_view>

#include "pexquo/pexquo.hpp"
#include "python/module/loops.h"
#include "python/module/stream.h"

namespace pexquo::python {
namespace {

using detail::Takes;

// What pexquo::parallel knows of a distribution.
struct Known {
  std::string_view name;
  Takes takes;
  bool is_light;
};

template <class D>
constexpr Known As(std::string_view name) {
  return {name, D::kTakes, detail::kIsLight<D>};
}

Known KnownOf(std::string_view distribution, uint32_t method) {
  if (distribution == "gaussian") {
    return {distribution, detail::TakesOf(static_cast<normal_method>(method)), false};
  }
  constexpr Known kTable[] = {
      As<uniform>("uniform"),     As<exponential>("exponential"), As<laplace>("laplace"),
      As<weibull>("weibull"),     As<cauchy>("cauchy"),           As<rayleigh>("rayleigh"),
      As<lognormal>("lognormal"), As<gumbel>("gumbel"),           As<bernoulli>("bernoulli"),
      As<geometric>("geometric"),
  };
  for (const Known& known : kTable) {
    if (known.name == distribution) return known;
  }
  return {distribution, Takes::varying, false};
}

// A distribution of the catalogue as pexquo::parallel knows them.
class Drawing : public detail::Distribution<Drawing, double> {
 public:
  static constexpr std::string_view kName = "pexquo";

  Drawing(const quo::Sampler& sampler, uint32_t method, const double* parameters)
      : sampler_(sampler),
        method_(method),
        parameters_(parameters),
        known_(KnownOf(sampler.distribution->name, method)) {}

  Takes takes() const { return known_.takes; }
  bool is_light() const { return known_.is_light; }

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
  Known known_;
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
