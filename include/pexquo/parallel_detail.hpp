/// \file
/// What pexquo/parallel.hpp stands on: the helping threads, the state that they take over from the
/// caller, the elements that they find special, and streams that move on block by block.
#ifndef PEXQUO_PARALLEL_DETAIL_HPP_
#define PEXQUO_PARALLEL_DETAIL_HPP_

#include <pthread.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cfenv>
#include <cmath>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <mutex>
#include <optional>
#include <source_location>
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
// the program nothing waits for them. A forked child, where they are missing, goes on alone: they
// count as busy there, and locks and conditions, which they may have held, are not looked at.
class Helpers {
 public:
  static Helpers& Shared() {
    static Helpers* const helpers = [] {
      auto* const made = new Helpers;
      pthread_atfork(nullptr, nullptr, [] { Shared().busy_.store(true); });
      return made;
    }();
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
  // it some hundred microseconds before it sleeps, as waking up may take as long: threads of calls
  // that follow each other do not sleep.
  template <typename Condition>
  std::unique_lock<std::mutex> Await(std::condition_variable& change, Condition condition) {
    for (int i = 0; i < 10000 && !condition(); ++i) __builtin_ia32_pause();
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

// Blocks given out to threads: to each the neighbours of what it had, as long as there are, and
// then those of the others.
class Blocks {
 public:
  Blocks(std::size_t blocks, std::size_t threads) : blocks_(blocks), next_(threads) {
    for (std::size_t t = 0; t < threads; ++t) next_[t] = Begin(t);
  }

  // In each thread: f(i) for blocks i until none is left.
  template <typename F>
  void Work(F&& f) {
    const std::size_t threads = next_.size();
    const std::size_t mine = joined_.fetch_add(1, std::memory_order_relaxed);
    for (std::size_t k = 0; k < threads; ++k) {
      const std::size_t share = (mine + k) % threads, end = Begin(share + 1);
      for (std::size_t i; (i = next_[share].fetch_add(1, std::memory_order_relaxed)) < end;) f(i);
    }
  }

 private:
  std::size_t Begin(std::size_t share) const { return blocks_ * share / next_.size(); }

  std::size_t blocks_;
  std::vector<std::atomic<std::size_t>> next_;
  std::atomic<std::size_t> joined_{0};
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
        if (same->index < found.index) *same = found;
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
    // A number for all elements is the call's: kernels that powers of some exponents are made by
    // record their own one argument.
    const R b = ScalarOf<Calls, R, R> ? job.scalar : static_cast<R>(found.arguments[1]);
    One<Calls>(static_cast<std::uint32_t>(accuracy), static_cast<R>(found.arguments[0]), b,
               &results[0], &results[1]);
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

// Locks what is held for microseconds: waits awake for it a while, as falling asleep and being
// woken up take longer.
inline std::unique_lock<std::mutex> LockSoon(std::mutex& mutex) {
  for (int i = 0; i < 10000; ++i) {
    if (mutex.try_lock()) return {mutex, std::adopt_lock};
    __builtin_ia32_pause();
  }
  return std::unique_lock(mutex);
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

// How a stream is moved on to where a thread begins: by skipping, by making words that nobody uses,
// or not at all.
enum class Advance { skip, make, none };

template <typename D>
constexpr bool kIsLight = std::is_same_v<D, uniform> || std::is_same_v<D, uniform_int> ||
                          std::is_same_v<D, uniform_bits> || std::is_same_v<D, bernoulli>;

// Generators whose words are made to get on have one word for each uniform number.
inline Advance AdvanceOf(const stream& s, Takes takes, bool is_light) {
  if (takes == Takes::varying) return Advance::none;
  switch (s.kind()) {
    case generator::r250:
      return is_light ? Advance::none : Advance::make;
    case generator::mt19937:
    case generator::mt2203:
      return Advance::make;
    default:
      return s.can_skip() ? Advance::skip : Advance::none;
  }
}

inline BrngProperties PropertiesOf(const stream& s, std::source_location where) {
  BrngProperties properties;
  const std::int32_t id = quoGetStreamBrng(s.handle());
  CheckStatus("pexquo::parallel", id, where);
  CheckStatus("pexquo::parallel", quoGetBrngProperties(id, &properties), where);
  return properties;
}

inline void MoveOn(stream& s, Advance how, std::uint64_t outputs, std::source_location where) {
  if (outputs == 0) return;
  if (how == Advance::skip) {
    s.skip(outputs, where);
    return;
  }
  const BrngProperties properties = PropertiesOf(s, where);
  std::array<std::uint32_t, 4096> words;  // in the nearest cache
  const bool is_r250 = s.kind() == generator::r250;
  std::uint32_t* const nowhere = is_r250 ? words.data() : nullptr;  // the twisters need no array
  const std::uint64_t most = is_r250 ? words.size() : std::uint64_t{1} << 30;
  while (outputs != 0) {
    const auto n = static_cast<std::int32_t>(std::min(outputs, most));
    CheckStatus("pexquo::parallel", properties.iBRng(s.handle(), n, nowhere), where);
    outputs -= static_cast<std::uint64_t>(n);
  }
}

// An array of n steps, as many numbers as have to be drawn together, that threads fill from one
// stream. The first has all of it; one that comes later, or is done, takes over the later half of
// the most that another one has left: so threads that come late or are slow keep nobody waiting,
// and few streams have to move on.
//
// What a thread has is drawn in pieces, large ones first, as what has begun cannot be taken over. A
// stream that skips stays where it is, for all to skip from; of others each thread leaves a copy
// where it last stood.
class Parts {
 public:
  // A step is of so many outputs. No piece but the last is shorter than `least`; moving over steps
  // takes `ahead` of the time of drawing them.
  Parts(stream& s, Advance how, std::size_t n, std::uint64_t outputs, std::size_t least,
        double ahead, std::size_t threads, std::source_location where)
      : stream_(s),
        how_(how),
        size_(n),
        outputs_(outputs),
        least_(least),
        most_(std::max(least, n / (2 * threads))),
        ahead_(how == Advance::skip ? 0 : ahead),
        where_(where),
        parts_(threads) {
    parts_[0].end = n;
    if (how == Advance::make) {
      state_bytes_ =
          static_cast<std::size_t>(PropertiesOf(s, where).StateSize) - sizeof(*s.handle());
      parts_[0].from.emplace(s);
    }
  }

  // In up to as many threads: draw(stream, first, count) of pieces until none is left.
  template <typename Draw>
  void Work(Draw&& draw) {
    try {
      WorkOn(draw);
    } catch (...) {
      failure_.Keep();
    }
  }

  // When all are done: moves the stream on behind the array, and throws if something was thrown.
  void End() {
    try {
      if (!is_moved_) MoveOn(stream_, how_, size_ * outputs_, where_);
    } catch (...) {
      failure_.Keep();
    }
    failure_.Rethrow();
  }

 private:
  struct Part {
    std::size_t begun = 0;          // where the piece that is being drawn begins
    std::size_t next = 0, end = 0;  // what is left behind it
    std::optional<stream> from;     // a stream that stands at `at`, no later than begun
    std::size_t at = 0;

    std::size_t Left() const { return end - next; }
  };

  template <typename Draw>
  void WorkOn(Draw& draw) {
    std::optional<stream> mine;
    std::size_t place = 0;  // where it stands
    std::unique_lock lock = LockSoon(mutex_);
    Part& part = parts_[joined_++];
    while (!failure_.IsThere()) {
      if (part.next == part.end) {
        if (!TakeOver(part)) break;
        mine.reset();
      }
      if (!mine) {
        mine.emplace(part.from ? *part.from : stream_);
        place = part.at;
      }
      const std::size_t left = part.end - part.next;
      const std::size_t count = std::min(left, std::clamp(left / 2, least_, most_));
      const std::size_t first = part.begun = part.next;
      part.next += count;
      lock.unlock();
      MoveOn(*mine, how_, (first - place) * outputs_, where_);
      draw(*mine, first, count);
      place = first + count;
      lock = LockSoon(mutex_);
      if (how_ == Advance::make) Leave(*mine, place, part);
    }
  }

  // The later half of what another one has left, or false if that is too little.
  bool TakeOver(Part& part) {
    Part& other = *std::ranges::max_element(parts_, {}, &Part::Left);
    if (other.Left() < 2 * least_) return false;
    // Where both are done at the same time.
    const auto all = static_cast<double>(other.end - other.begun);
    const std::size_t middle = std::clamp(
        other.begun + static_cast<std::size_t>(all / (2 - ahead_)), other.next, other.end - least_);
    part.begun = part.next = middle;
    part.end = std::exchange(other.end, middle);
    part.from.reset();
    if (other.from) part.from.emplace(*other.from);
    part.at = other.at;
    return true;
  }

  void Leave(const stream& mine, std::size_t place, Part& part) {
    if (place == size_) {
      CopyState(mine, stream_);
      is_moved_ = true;
    } else if (part.next != part.end) {
      CopyState(mine, *part.from);
      part.at = place;
    }
  }

  // Without what else the streams hold.
  void CopyState(const stream& from, const stream& to) const {
    std::memcpy(to.handle() + 1, from.handle() + 1, state_bytes_);
  }

  stream& stream_;
  Advance how_;
  std::size_t size_;
  std::uint64_t outputs_;
  std::size_t least_, most_;
  double ahead_;
  std::source_location where_;
  std::size_t state_bytes_ = 0;
  FirstException failure_;
  std::mutex mutex_;  // for what follows, and the stream
  std::vector<Part> parts_;
  std::size_t joined_ = 0;
  bool is_moved_ = false;
};

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
}  // namespace pexquo

#endif  // PEXQUO_PARALLEL_DETAIL_HPP_
