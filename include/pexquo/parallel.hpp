/// \file
/// Many cores. Included by pexquo/pexquo.hpp.
#ifndef PEXQUO_PARALLEL_HPP_
#define PEXQUO_PARALLEL_HPP_

#include <algorithm>
#include <array>
#include <atomic>
#include <cfenv>
#include <complex>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <mutex>
#include <optional>
#include <source_location>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "pexquo/distributions.hpp"
#include "pexquo/error_scope.hpp"
#include "pexquo/functions.hpp"
#include "pexquo/stream.hpp"

namespace pexquo {
namespace detail {

// The program's sleeping threads, which help whoever has work. They are never joined: at the end of
// the program, or in a forked child, where they are missing, nothing waits for them.
class Helpers {
 public:
  static Helpers& Shared() {
    static Helpers* const helpers = new Helpers;
    return *helpers;
  }

  // Calls work() in the calling thread and in up to `others` more, and returns when all are done.
  // The work has to get done whoever comes: threads may come late or, when they help someone else,
  // not at all. work must not throw.
  template <typename Work>
  void Run(std::size_t others, Work& work) {
    if (others == 0 || busy_.exchange(true, std::memory_order_acquire)) {
      work();
      return;
    }
    {
      const std::lock_guard lock(mutex_);
      Hire(others);
      run_ = [](void* w) { (*static_cast<Work*>(w))(); };
      work_ = &work;
      wanted_ = others;
    }
    call_.notify_all();
    work();
    {
      const std::lock_guard lock(mutex_);
      wanted_ = 0;
    }
    Await(left_, [this] { return at_work_ == 0; });
    busy_.store(false, std::memory_order_release);
  }

 private:
  void Hire(std::size_t others) {
    try {
      for (; count_ < others; ++count_) std::thread([this] { Help(); }).detach();
    } catch (const std::exception&) {
      // The system gives no more threads, or no memory: those that are there have to do.
    }
  }

  void Help() {
    while (true) {
      std::unique_lock lock = Await(call_, [this] { return wanted_ != 0; });
      --wanted_;
      ++at_work_;
      const auto run = run_;
      void* const work = work_;
      lock.unlock();
      run(work);
      lock.lock();
      if (--at_work_ == 0) left_.notify_one();
    }
  }

  // Returns with the mutex held and the condition, which is of atomic numbers, true. Looks out for
  // it some ten microseconds before it sleeps, as waking up takes as long.
  template <typename Condition>
  std::unique_lock<std::mutex> Await(std::condition_variable& change, Condition condition) {
    for (int i = 0; i < 2000 && !condition(); ++i) __builtin_ia32_pause();
    std::unique_lock lock(mutex_);
    change.wait(lock, condition);
    return lock;
  }

  std::atomic<bool> busy_{false};
  std::mutex mutex_;
  std::condition_variable call_, left_;
  // Written under the mutex.
  void (*run_)(void*) = nullptr;
  void* work_ = nullptr;
  std::atomic<std::size_t> wanted_{0}, at_work_{0};
  std::size_t count_ = 0;
};

// Rounding and flush modes of the calling thread for its helpers, and their exception flags for it.
class FloatingPoint {
 public:
  FloatingPoint() { std::fegetenv(&environment_); }

  // In whatever thread: runs f as the caller would.
  template <typename F>
  void Run(F&& f) {
    if (std::this_thread::get_id() == caller_) {
      f();
      return;
    }
    std::fesetenv(&environment_);
    std::feclearexcept(FE_ALL_EXCEPT);
    f();
    flags_.fetch_or(std::fetestexcept(FE_ALL_EXCEPT), std::memory_order_relaxed);
    std::fesetenv(FE_DFL_ENV);
  }

  // In the calling thread, at the end: sets the flags, without a trap.
  void SetFlags() const {
    const int flags = flags_.load(std::memory_order_relaxed);
    if (flags == 0) return;
    std::fenv_t here;
    std::fexcept_t raised;
    std::feholdexcept(&here);
    std::feraiseexcept(flags);
    std::fegetexceptflag(&raised, flags);
    std::fesetenv(&here);
    std::fesetexceptflag(&raised, flags);
  }

 private:
  std::fenv_t environment_;
  std::thread::id caller_ = std::this_thread::get_id();
  std::atomic<int> flags_{0};
};

// A special element of a piece of a call, to be reported when the call is complete.
struct Found {
  std::size_t index = 0;
  std::int32_t code = 0;
  double arguments[2] = {};
};

// Stands in for the thread's own error handling while it computes pieces of a call.
class Collector {
 public:
  // Without `every`, of each code only the element of the greatest index is kept.
  Collector(tier accuracy, bool every)
      : every_(every),
        outer_(std::exchange(Current(), this)),
        old_status_(pexGetErrStatus()),
        old_mode_(pexGetMode()),
        old_callback_(pexSetErrorCallBack(&Collector::Collect)) {
    pexSetMode(static_cast<std::uint32_t>(accuracy) | PEX_ERRMODE_CALLBACK);
  }
  ~Collector() {
    pexSetErrorCallBack(old_callback_);
    pexSetMode(old_mode_);
    pexSetErrStatus(old_status_);
    Current() = outer_;
  }
  Collector(const Collector&) = delete;
  Collector& operator=(const Collector&) = delete;

  // Where the next piece begins in the whole.
  void Begin(std::size_t first) { first_ = first; }

  // Hands over what was found, or the exception that kept it from it.
  void MoveTo(std::vector<Found>& all) {
    if (failed_ != nullptr) std::rethrow_exception(failed_);
    all.insert(all.end(), found_.begin(), found_.end());
  }

 private:
  static Collector*& Current() {
    static thread_local Collector* current = nullptr;
    return current;
  }

  static int Collect(PexErrorContext* record) noexcept {
    Collector& self = *Current();
    try {
      if (record->code > 0 && self.failed_ == nullptr) self.Add(*record);
    } catch (...) {
      self.failed_ = std::current_exception();
    }
    return 1;  // dealt with
  }

  void Add(const PexErrorContext& record) {
    const Found found{
        first_ + static_cast<std::uint32_t>(record.index), record.code, {record.arg1, record.arg2}};
    if (!every_) {
      const auto same = std::find_if(found_.begin(), found_.end(),
                                     [&](const Found& f) { return f.code == record.code; });
      if (same != found_.end()) {
        *same = found;  // pieces come in ascending order
        return;
      }
    }
    found_.push_back(found);
  }

  bool every_;
  std::size_t first_ = 0;
  std::vector<Found> found_;
  std::exception_ptr failed_;
  Collector* outer_;
  std::int32_t old_status_;
  std::uint32_t old_mode_;
  PexErrorCallBack old_callback_;
};

// One element of a function of real numbers by itself.
template <typename Calls, typename T>
void One(std::uint32_t mode, T a, T b, T* r1, T* r2) {
  if constexpr (UnaryOf<Calls, T, T>) {
    Calls::call(mode, 1, &a, r1);
  } else if constexpr (BinaryOf<Calls, T, T>) {
    Calls::call(mode, 1, &a, &b, r1);
  } else if constexpr (ScalarOf<Calls, T, T>) {
    Calls::call(mode, 1, &a, b, r1);
  } else {
    Calls::call(mode, 1, &a, r1, r2);
  }
}

// Reports elements as their call would have, by computing them once more under the thread's own
// error handling, with their index put right; a result that a callback changes is written to the
// arrays.
class Reporter {
 public:
  Reporter()
      : outer_(std::exchange(Current(), this)),
        mode_(pexGetMode()),
        callback_(pexSetErrorCallBack(&Reporter::Forward)) {}
  ~Reporter() {
    pexSetErrorCallBack(callback_);
    pexSetMode(mode_);
    Current() = outer_;
  }
  Reporter(const Reporter&) = delete;
  Reporter& operator=(const Reporter&) = delete;

  template <typename Calls, typename R, typename Piece>
  void Report(const Job<Calls, R, Piece>& job, tier accuracy, const Found& found) {
    index_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(found.index));
    R results[2];
    One<Calls>(static_cast<std::uint32_t>(accuracy), static_cast<R>(found.arguments[0]),
               static_cast<R>(found.arguments[1]), &results[0], &results[1]);
    job.first[found.index] = results[0];
    if (job.second != nullptr) job.second[found.index] = results[1];
  }

 private:
  static Reporter*& Current() {
    static thread_local Reporter* current = nullptr;
    return current;
  }

  static int Forward(PexErrorContext* record) {
    const Reporter& self = *Current();
    record->index = self.index_;
    const bool calls = (self.mode_ & PEX_ERRMODE_CALLBACK) != 0 && self.callback_ != nullptr;
    return calls ? self.callback_(record) : 0;
  }

  Reporter* outer_;
  std::uint32_t mode_;
  PexErrorCallBack callback_;
  std::int32_t index_ = 0;
};

// Elements by ascending index; without `every`, the last one of each code.
inline void Arrange(std::vector<Found>& all, bool every) {
  std::ranges::sort(all, {}, &Found::index);
  if (every) return;
  std::vector<Found> last;
  for (const Found& f : all) {
    std::erase_if(last, [&](const Found& g) { return g.code == f.code; });
    last.push_back(f);
  }
  all = std::move(last);
}

// The first exception of several threads.
class FirstException {
 public:
  void Keep() noexcept {
    const std::lock_guard lock(mutex_);
    if (first_ == nullptr) first_ = std::current_exception();
    there_.store(true, std::memory_order_relaxed);
  }
  bool IsThere() const noexcept { return there_.load(std::memory_order_relaxed); }
  void Rethrow() const {
    if (first_ != nullptr) std::rethrow_exception(first_);
  }

 private:
  std::mutex mutex_;
  std::exception_ptr first_;
  std::atomic<bool> there_{false};
};

// How a stream is moved on to the next piece: by skipping, by drawing words that nobody uses, or
// not at all.
enum class Advance { skip, draw, none };

template <typename D>
constexpr bool kIsLight = std::is_same_v<D, uniform> || std::is_same_v<D, uniform_int> ||
                          std::is_same_v<D, uniform_bits> || std::is_same_v<D, bernoulli>;

// Generators whose words are drawn to get on have one word for each uniform number.
inline Advance AdvanceOf(const stream& s, Takes takes, bool is_light) {
  if (takes == Takes::varying) return Advance::none;
  switch (s.kind()) {
    case generator::r250:
    case generator::mt19937:
    case generator::mt2203:
      return is_light ? Advance::none : Advance::draw;
    default:
      return s.can_skip() ? Advance::skip : Advance::none;
  }
}

inline void MoveOn(stream& s, Advance how, std::uint64_t outputs, std::source_location where) {
  if (how == Advance::skip) {
    s.skip(outputs, where);
    return;
  }
  std::array<std::uint32_t, 1024> words;
  while (outputs != 0) {
    const std::uint64_t n = std::min<std::uint64_t>(outputs, words.size());
    CheckStatus("pexquo::parallel",
                quoiRngUniformBits(0, s.handle(), static_cast<std::int64_t>(n), words.data()),
                where);
    outputs -= n;
  }
}

// Whether a normal number of type T waits in the stream to be drawn: the stream keeps its pair of
// uniforms, the first of which is -1 when there is none.
template <typename T>
bool IsPending(const stream& s) {
  using Real = std::conditional_t<std::is_same_v<T, float>, float, double>;
  constexpr std::uint32_t kKey = std::is_same_v<Real, float> ? 1 : 2;
  for (const StreamChunk* chunk = s.handle()->chunks; chunk != nullptr; chunk = chunk->next) {
    if (chunk->key != kKey || chunk->size != 2 * sizeof(Real)) continue;
    Real u;
    std::memcpy(&u, chunk->data, sizeof(u));
    return u != Real{-1};
  }
  return false;
}

}  // namespace detail

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
  /// \param block   elements that a thread takes at a time, at least 1; what is shorter than two
  ///                blocks is done by the calling thread
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
  /// leaves it. Threads draw blocks of the sequence, from copies of the stream that have skipped
  /// ahead. How far that helps depends on the generator and the distribution:
  /// - mcg31m1, mcg59, wh, mrg32k3a, sobol, niederr, and registered generators that skip ahead by
  ///   their outputs: all distributions that take a fixed number of outputs;
  /// - mt19937, mt2203 and r250, which cannot skip: the same without uniform, uniform_int,
  ///   uniform_bits and bernoulli; one thread after the other draws the words that lead on, and
  ///   what is made of them is done at once;
  /// - abstract and other registered streams, and gamma, beta, binomial, poisson, hypergeometric
  /// and
  ///   negative_binomial, whose numbers take as many outputs as they need: by the calling thread.
  ///   Members of a family serve there: see for_each.
  /// \throws argument_error before the stream has moved; stream_error, and then the stream stands
  ///         somewhere ahead and the range is filled in part
  template <typename D, typename R>
  requires requires(const D& d, stream& s, R&& r) { d.fill(s, r); }
  void fill(const D& d, stream& s, R&& r,
            std::source_location where = std::source_location::current()) const {
    using T = std::ranges::range_value_t<R>;
    if constexpr (requires { d.takes(); }) {
      const std::size_t n = std::ranges::size(r);
      if (threads_ > 1 && n / 2 >= block_ && s.handle() != nullptr) {
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
    detail::Helpers::Shared().Run(std::min<std::size_t>(threads_, std::max<std::size_t>(n, 1)) - 1,
                                  work);
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
    std::atomic<std::size_t> next{0};
    std::mutex merging;
    std::vector<detail::Found> all;
    detail::FirstException failure;
    detail::FloatingPoint environment;
    auto work = [&] {
      environment.Run([&] {
        try {
          detail::Collector collector(accuracy, every);
          for (std::size_t i; (i = next.fetch_add(1, std::memory_order_relaxed)) < blocks;) {
            const std::size_t first = i * block_;
            collector.Begin(first);
            const std::int32_t status = job.piece(0, first, std::min(block_, job.size - first));
            if (status < 0) detail::ThrowRefused(Job::Function::name, status, where);
          }
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
    // Skipping takes some microseconds however far it goes: a few large blocks for each thread.
    std::size_t block = block_;
    if (how == detail::Advance::skip) {
      block = std::clamp(n * unit / (std::size_t{4} * threads_), block_, 8 * block_);
    }
    block = std::max<std::size_t>(block / unit / multiple, 1) * multiple;
    DrawBlocks(d, s, r, n - tail, block, how, outputs, where);
    r += (n - tail) * unit;
    n = tail;
    if (n != 0) draw(s, n);
  }

  template <typename D, typename T>
  void DrawBlocks(const D& d, stream& s, T* r, std::size_t n, std::size_t block,
                  detail::Advance how, std::size_t outputs, std::source_location where) const {
    const std::size_t unit = d.unit(s);
    std::mutex taking;  // for the stream and `done`
    std::size_t done = 0;
    detail::FirstException failure;
    detail::FloatingPoint environment;
    // A copy of the stream and the units to draw from it; none when there are none left.
    const auto take = [&](std::size_t& first, std::size_t& count) -> std::optional<stream> {
      const std::lock_guard lock(taking);
      if (done == n) return std::nullopt;
      first = done;
      count = std::min(block, n - done);
      std::optional<stream> copy(s);
      detail::MoveOn(s, how, static_cast<std::uint64_t>(count) * outputs, where);
      done += count;
      return copy;
    };
    auto work = [&] {
      environment.Run([&] {
        try {
          while (!failure.IsThere()) {
            std::size_t first = 0, count = 0;
            const std::optional<stream> from = take(first, count);
            if (!from) break;
            detail::CheckStatus(
                D::kName,
                d.draw(from->handle(), static_cast<std::int64_t>(count), r + first * unit), where);
          }
        } catch (...) {
          failure.Keep();
        }
      });
    };
    detail::Helpers::Shared().Run(Others((n + block - 1) / block), work);
    environment.SetFlags();
    failure.Rethrow();
  }

  unsigned threads_;
  std::size_t block_;
};

}  // namespace pexquo

#endif  // PEXQUO_PARALLEL_HPP_
