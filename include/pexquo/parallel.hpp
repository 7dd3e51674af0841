/// \file
/// Many cores. Included by pexquo/pexquo.hpp.
#ifndef PEXQUO_PARALLEL_HPP_
#define PEXQUO_PARALLEL_HPP_

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <mutex>
#include <ranges>
#include <source_location>
#include <thread>
#include <type_traits>
#include <vector>

#include "pexquo/distributions.hpp"
#include "pexquo/functions.hpp"
#include "pexquo/parallel_detail.hpp"
#include "pexquo/stream.hpp"

namespace pexquo {

/// The machine's cores. Applies functions to large arrays and fills large arrays from a stream,
/// with the bits that one thread gives, whatever the number of threads; small arrays are done by
/// the calling thread alone. The threads are the program's own, made at the first use and shared by
/// all objects of this class, and sleep in between; an object holds two numbers.
///
/// Calls return when all is done. One call has the helping threads at a time: a call from a second
/// thread meanwhile, or from within a call, is done by its own thread, with the same results.
///
/// \code
/// const pexquo::parallel cores;                       // all of them
/// cores.apply(pexquo::exp, x, y);
/// cores.fill(pexquo::normal{0, 1}, s, x);
/// cores.for_each(100, [&](std::size_t i) { work(i); });
/// \endcode
class parallel {
 public:
  /// \param threads how many, the calling one included; 0 for as many as there are cores
  /// \param block   elements that a thread takes at a time, at least 1, and about how many random
  ///                numbers; what is shorter than two blocks is done by the calling thread
  explicit parallel(unsigned threads = 0, std::size_t block = 16384)
      : threads_(threads != 0 ? threads : std::max(1u, std::thread::hardware_concurrency())),
        block_(std::max<std::size_t>(block, 1)) {}

  /// How many threads work on a large array.
  unsigned threads() const noexcept { return threads_; }

  /// f(a, r), f(a, b, r) or f(a, r1, r2) as f itself does, on the cores. Helping threads compute
  /// with the calling thread's mode, rounding and flush modes. Special elements are reported when
  /// all are computed, by ascending index and in the calling thread: to its error_scope, callback,
  /// status, errno and flags, as the call in one thread would, with the index in the whole array.
  /// (Where no one looks at each of them, only what they leave behind is seen to.) Indices count
  /// from the array's beginning if no input-vector base is set.
  /// \throws argument_error as f does, and what a replacement throws
  template <typename Calls, input_array A, output_array R>
  void apply(const unary_function<Calls>& f, A&& a, R&& r, tier accuracy = tier::current,
             std::source_location where = std::source_location::current()) const {
    Run(f.job(a, r, where), accuracy, where);
  }
  /// \copydoc apply
  template <typename Calls, input_array A, input_array B, output_array R>
  void apply(const binary_function<Calls>& f, A&& a, B&& b, R&& r, tier accuracy = tier::current,
             std::source_location where = std::source_location::current()) const {
    Run(f.job(a, b, r, where), accuracy, where);
  }
  /// \copydoc apply
  template <typename Calls, input_array A, output_array R>
  void apply(const scalar_function<Calls>& f, A&& a, std::type_identity_t<detail::ElementOf<A>> b,
             R&& r, tier accuracy = tier::current,
             std::source_location where = std::source_location::current()) const {
    Run(f.job(a, b, r, where), accuracy, where);
  }
  /// \copydoc apply
  template <typename Calls, input_array A, output_array R1, output_array R2>
  void apply(const two_result_function<Calls>& f, A&& a, R1&& r1, R2&& r2,
             tier accuracy = tier::current,
             std::source_location where = std::source_location::current()) const {
    Run(f.job(a, r1, r2, where), accuracy, where);
  }

  /// What `d.fill(s, r)` does, on the cores: the same numbers, and the stream goes on as one thread
  /// leaves it. Threads draw parts of the sequence, from copies of the stream that have skipped
  /// ahead. How far that helps depends on the generator and the distribution:
  /// - mcg31m1, mcg59, wh, mrg32k3a, sobol, niederr, and registered generators that skip ahead by
  ///   their outputs: all distributions that take a fixed number of outputs;
  /// - mt19937, mt2203 and r250, which cannot skip: the same, of r250 without uniform, uniform_int,
  ///   uniform_bits and bernoulli; threads make the words that lead to their parts first, which
  ///   takes some tenth of the time of drawing them, and of uniform numbers a third to a half;
  /// - abstract and other registered streams, and gamma, beta, binomial, poisson, hypergeometric
  ///   and negative_binomial, whose numbers take as many outputs as they need, and normal_mv of
  ///   more than 10 dimensions in full storage, which the system's BLAS multiplies, and lognormal
  ///   with e^z that may overflow or underflow (|mean| + 39 sigma from 708 on, of floats |mean| +
  ///   14.5 sigma from 87 on), which is reported as d.fill does: by the calling thread. Members of
  ///   a family serve there: see for_each.
  /// \throws argument_error before the stream has moved; stream_error, and then the stream stands
  ///         somewhere ahead and the range is filled in part
  template <typename D, typename R>
  requires requires(const D& d, stream& s, R&& r) { d.fill(s, r); }
  void fill(const D& d, stream& s, R&& r,
            std::source_location where = std::source_location::current()) const {
    using T = std::ranges::range_value_t<R>;
    if constexpr (requires { d.takes(); }) {
      const std::size_t n = std::ranges::size(r);
      bool reports = false;
      if constexpr (requires { d.template reports<T>(); }) reports = d.template reports<T>();
      if (threads_ > 1 && n / 2 >= block_ && s.handle() != nullptr && !reports) {
        const auto how = detail::AdvanceOf(s, d.takes(), detail::kIsLight<D>);
        if (how != detail::Advance::none && n % d.unit(s) == 0) {
          T* const data = std::ranges::data(r);
          // The parameters, while nothing has moved yet.
          detail::CheckStatus(D::kName, d.draw(s.handle(), 0, data), where);
          Fill(d, s, data, n / d.unit(s), how, where);
          return;
        }
      }
    }
    d.fill(s, r, where);
  }

  /// f(i) for i = 0 .. n - 1, each once, on the cores and in no particular order. If some throw,
  /// one of the exceptions comes out, and not all i may have been called.
  ///
  /// \code
  /// const pexquo::family workers("mt2203", 42);
  /// std::vector<double> sums(64);
  /// cores.for_each(sums.size(), [&](std::size_t i) {
  ///   pexquo::stream s = workers[i];                   // each task has a stream of its own
  ///   sums[i] = simulate(s);
  /// });
  /// \endcode
  template <typename F>
  void for_each(std::size_t n, F&& f) const {
    std::atomic<std::size_t> next{0};
    detail::FirstException failure;
    detail::FloatingPoint environment;
    auto work = [&] {
      environment.Run([&] {
        try {
          for (std::size_t i; !failure.IsThere() && (i = next.fetch_add(1)) < n;) f(i);
        } catch (...) {
          failure.Keep();
        }
      });
    };
    detail::Helpers::Shared().Run(Others(n), work);
    environment.SetFlags();
    failure.Rethrow();
  }

 private:
  // How many help with n blocks.
  std::size_t Others(std::size_t blocks) const {
    return std::min<std::size_t>(threads_, std::max<std::size_t>(blocks, 1)) - 1;
  }

  template <typename Job>
  void Run(const Job& job, tier accuracy, std::source_location where) const {
    if (threads_ == 1 || job.size / 2 < block_) {
      job.Run(accuracy, where);
      return;
    }
    const std::uint32_t mode = pexGetMode();
    if (accuracy == tier::current) accuracy = static_cast<tier>(mode & PEX_MODE_ACCURACY);
    const bool every = ((mode & PEX_ERRMODE_CALLBACK) != 0 && pexGetErrorCallBack() != nullptr) ||
                       (mode & PEX_ERRMODE_STDERR) != 0;
    const std::size_t blocks = (job.size - 1) / block_ + 1;
    detail::Blocks shares(blocks, Others(blocks) + 1);
    std::mutex merging;
    std::vector<detail::Found> all;
    detail::FirstException failure;
    detail::FloatingPoint environment;
    auto work = [&] {
      environment.Run([&] {
        try {
          detail::Collector collector(accuracy, every);
          shares.Work([&](std::size_t i) {
            const std::size_t first = i * block_;
            collector.Begin(first);
            const std::int32_t status = job.piece(0, first, std::min(block_, job.size - first));
            if (status < 0) detail::ThrowRefused(Job::Function::name, status, where);
          });
          const std::lock_guard lock(merging);
          collector.MoveTo(all);
        } catch (...) {
          failure.Keep();
        }
      });
    };
    detail::Helpers::Shared().Run(Others(blocks), work);
    environment.SetFlags();
    failure.Rethrow();
    if (all.empty()) return;
    detail::Arrange(all, every);
    if constexpr (std::is_floating_point_v<std::remove_pointer_t<decltype(job.first)>>) {
      detail::Reporter reporter;
      for (const detail::Found& f : all) reporter.Report(job, accuracy, f);
    }
    if (detail::g_waiting.load(std::memory_order_relaxed) != 0) detail::RethrowWaiting();
  }

  // n units; a unit is as many elements as are drawn together.
  template <typename D, typename T>
  void Fill(const D& d, stream& s, T* r, std::size_t n, detail::Advance how,
            std::source_location where) const {
    const std::size_t unit = d.unit(s);
    const auto draw = [&](stream& from, std::size_t count) {
      detail::CheckStatus(D::kName, d.draw(from.handle(), static_cast<std::int64_t>(count), r),
                          where);
      r += count * unit;
      n -= count;
    };
    std::size_t outputs = 1;  // of a unit
    if constexpr (!std::is_same_v<D, uniform_bits>) {
      outputs = d.takes() == detail::Takes::two ? 2 * unit : unit;
    }
    std::size_t multiple = 1;
    if (d.takes() == detail::Takes::pairs) {
      // Pairs have to begin where blocks begin.
      multiple = unit % 2 == 0 ? 1 : 2;
      draw(s, 1);  // ends a pair, or gives the stream the room for one
      if (n != 0 && detail::IsPending<T>(s)) draw(s, 1);
      if (n != 0 && detail::IsPending<T>(s)) {  // vectors of an even dimension begin within pairs
        draw(s, n);
        return;
      }
    }
    const std::size_t tail = n % multiple;
    DrawParts(d, s, r, (n - tail) / multiple, multiple, how, outputs, where);
    r += (n - tail) * unit;
    n = tail;
    if (n != 0) draw(s, n);
  }

  // n steps of so many units, of so many outputs each.
  template <typename D, typename T>
  void DrawParts(const D& d, stream& s, T* r, std::size_t n, std::size_t multiple,
                 detail::Advance how, std::size_t outputs, std::source_location where) const {
    const std::size_t step = multiple * d.unit(s);
    // Light numbers are worth it from many on where the words up to them have to be made.
    const bool is_light = detail::kIsLight<D> && how == detail::Advance::make;
    const double ahead = is_light ? 0.3 : 0.07;  // about
    const std::size_t others = Others(n * step / block_ / (is_light ? 4 : 1));
    const auto draw = [&](const stream& from, std::size_t first, std::size_t count) {
      detail::CheckStatus(
          D::kName,
          d.draw(from.handle(), static_cast<std::int64_t>(count * multiple), r + first * step),
          where);
    };
    if (others == 0) {
      draw(s, 0, n);
      return;
    }
    const std::size_t least = std::max<std::size_t>(block_ / 8 / step, 1);
    detail::Parts parts(s, how, n, multiple * outputs, least, ahead, others + 1, where);
    detail::FloatingPoint environment;
    auto work = [&] { environment.Run([&] { parts.Work(draw); }); };
    detail::Helpers::Shared().Run(others, work);
    environment.SetFlags();
    parts.End();
  }

  unsigned threads_;
  std::size_t block_;
};

}  // namespace pexquo

#endif  // PEXQUO_PARALLEL_HPP_
