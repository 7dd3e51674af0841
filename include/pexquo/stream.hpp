/// \file
/// Random streams. Included by pexquo/pexquo.hpp.
#ifndef PEXQUO_STREAM_HPP_
#define PEXQUO_STREAM_HPP_

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <ranges>
#include <source_location>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "pexquo/error.hpp"
#include "pexquo/pexquo.h"

namespace pexquo {

/// The basic generators; of families the first member.
enum class generator : std::int32_t {
  mcg31m1 = QUO_BRNG_MCG31M1,    ///< congruential, 31 bits; skips and leapfrogs
  r250 = QUO_BRNG_R250,          ///< generalised feedback shift register
  mrg32k3a = QUO_BRNG_MRG32K3A,  ///< combined multiple recursive, period near 2^191; skips
  mcg59 = QUO_BRNG_MCG59,        ///< congruential, 59 bits; skips and leapfrogs
  wh = QUO_BRNG_WH,              ///< 273 members; skips and leapfrogs
  sobol = QUO_BRNG_SOBOL,        ///< quasi-random: the seed is the dimension
  niederr = QUO_BRNG_NIEDERR,    ///< quasi-random: the seed is the dimension
  mt19937 = QUO_BRNG_MT19937,    ///< Mersenne twister
  mt2203 = QUO_BRNG_MT2203,      ///< 1024 members, small Mersenne twisters
};

/// A generator's name in lower case; "registered" for one that the program has added.
constexpr std::string_view name(generator g) {
  constexpr std::string_view kNames[] = {"mcg31m1", "r250",      "mrg32k3a",  "mcg59",
                                         "wh",      "sobol",     "niederr",   "mt19937",
                                         "mt2203",  "iabstract", "dabstract", "sabstract"};
  const auto row = static_cast<std::size_t>((static_cast<std::int32_t>(g) >> 20) - 1);
  return row < std::size(kNames) ? kNames[row] : "registered";
}

/// How many members a generator has: 273 of wh, 1024 of mt2203, 1 of the others.
constexpr std::int32_t members(generator g) {
  return g == generator::wh ? 273 : g == generator::mt2203 ? 1024 : 1;
}

/// The generator of a name, in upper or lower case.
/// \throws argument_error if there is none of that name
inline generator generator_named(std::string_view wanted,
                                 std::source_location where = std::source_location::current()) {
  const auto same = [&](std::string_view known) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    if (known.size() != wanted.size()) return false;
    for (std::size_t i = 0; i < known.size(); ++i) {
      if (lower(wanted[i]) != known[i]) return false;
    }
    return true;
  };
  for (std::int32_t id = QUO_BRNG_MCG31M1; id <= QUO_BRNG_MT2203; id += QUO_BRNG_MCG31M1) {
    if (same(name(generator{id}))) return generator{id};
  }
  throw argument_error("pexquo::generator_named",
                       "there is no generator \"" + std::string(wanted) + "\"", QUO_INVALID_BRNG,
                       where);
}

/// A member of a family, counted from 0.
struct member {
  std::int32_t number = 0;  ///< from 0 to members(generator) - 1
};

/// The 32-bit words that a stream starts from: a number of up to 64 bits, a list of words, or any
/// range of them. Streams from the same words are the same.
class seed_words {
 public:
  /// A number of up to 32 bits is one word, a larger one two, the low one first.
  /// \throws argument_error for a negative one
  template <std::integral T>
  seed_words(T seed, std::source_location where = std::source_location::current()) {  // NOLINT
    if constexpr (std::signed_integral<T>) {
      if (seed < 0) throw argument_error("pexquo::stream", "a negative seed", 0, where);
    }
    const auto number = static_cast<std::uint64_t>(seed);
    words_.push_back(static_cast<std::uint32_t>(number));
    if (number >> 32 != 0) words_.push_back(static_cast<std::uint32_t>(number >> 32));
  }
  /// These words.
  seed_words(std::initializer_list<std::uint32_t> words) : words_(words) {}  // NOLINT
  /// A copy of these words.
  seed_words(std::span<const std::uint32_t> words)  // NOLINT
      : words_(words.begin(), words.end()) {}
  /// These words.
  seed_words(std::vector<std::uint32_t> words) : words_(std::move(words)) {}  // NOLINT
  /// A copy of the words of any other range: an array, a span of its own size, a view.
  template <std::ranges::input_range R>
  requires std::same_as<std::remove_cv_t<std::ranges::range_value_t<R>>, std::uint32_t> seed_words(
      R&& words) {  // NOLINT
    for (const std::uint32_t word : words) words_.push_back(word);
  }

  /// The words.
  std::span<const std::uint32_t> words() const noexcept { return words_; }

 private:
  std::vector<std::uint32_t> words_;
};

/// A random stream: a generator and where it stands. Streams are values: a copy goes on as the
/// original does, independent of it. A stream belongs to one thread at a time.
///
/// \code
/// pexquo::stream s(pexquo::generator::mrg32k3a, 2026);
/// std::vector<double> x(1000);
/// pexquo::normal{0, 1}.fill(s, x);
///
/// const pexquo::stream here = s;                      // a copy, with its state
/// s.skip(1'000'000);
/// s.save("run.stream");
/// pexquo::stream worker("mt2203", pexquo::member{7}, {1, 2});
/// \endcode
class stream {
 public:
  /// A stream of a generator from its seed.
  /// \throws argument_error if the generator refuses
  /// \throws stream_error if the generator refuses
  stream(generator g, const seed_words& seed,
         std::source_location where = std::source_location::current())
      : stream(g, member{0}, seed, where) {}
  /// \throws argument_error also for an unknown name
  stream(std::string_view generator_name, const seed_words& seed,
         std::source_location where = std::source_location::current())
      : stream(generator_named(generator_name, where), member{0}, seed, where) {}
  /// A stream of one member of a family.
  /// \throws argument_error also if there is no such member
  stream(generator g, member m, const seed_words& seed,
         std::source_location where = std::source_location::current()) {
    if (m.number < 0 || m.number > 0xFFFFF) {
      throw argument_error("pexquo::stream", "there is no member " + std::to_string(m.number),
                           QUO_INVALID_BRNG, where);
    }
    const auto words = seed.words();
    detail::CheckStatus("pexquo::stream",
                        quoNewStreamEx(&handle_, static_cast<std::int32_t>(g) + m.number,
                                       static_cast<std::int64_t>(words.size()), words.data()),
                        where);
  }
  /// The same by the family's name.
  stream(std::string_view generator_name, member m, const seed_words& seed,
         std::source_location where = std::source_location::current())
      : stream(generator_named(generator_name, where), m, seed, where) {}

  /// Takes over a stream of the C interface, such as an abstract stream; it is deleted with this.
  static stream adopt(QuoStream* handle) noexcept {
    stream s;
    s.handle_ = handle;
    return s;
  }

  /// A copy with the state, and a pending normal number.
  /// \throws stream_error for want of memory or if the other has been moved from
  stream(const stream& other) {
    detail::CheckStatus("pexquo::stream", quoCopyStream(&handle_, other.handle_),
                        std::source_location::current());
  }
  /// Becomes a copy.
  stream& operator=(const stream& other) {
    if (this != &other) *this = stream(other);
    return *this;
  }
  /// What is moved from can only be assigned to or destroyed; all else throws stream_error.
  stream(stream&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  /// Takes over the other.
  stream& operator=(stream&& other) noexcept {
    stream taken(std::move(other));  // leaves nothing behind; its end is that of the old stream
    std::swap(handle_, taken.handle_);
    return *this;
  }
  ~stream() { quoDeleteStream(&handle_); }

  /// Moves on by n of the generator's outputs, as if they had been drawn: most distributions take
  /// one for a number. A pending normal number stays.
  /// \throws stream_error if the generator cannot (r250, mt19937, mt2203, abstract streams)
  void skip(std::uint64_t n, std::source_location where = std::source_location::current()) {
    detail::CheckStatus("pexquo::stream::skip", quoSkipAheadStream(handle_, n), where);
  }

  /// From now on the outputs k, k + n, k + 2n ... of the sequence, counted from here, 0 <= k < n.
  /// \throws argument_error for another k or n, stream_error if the generator cannot
  void leapfrog(std::int32_t k, std::int32_t n,
                std::source_location where = std::source_location::current()) {
    detail::CheckStatus("pexquo::stream::leapfrog", quoLeapfrogStream(handle_, k, n), where);
  }

  /// Writes the stream to a file.
  /// \throws file_error
  void save(const std::filesystem::path& path,
            std::source_location where = std::source_location::current()) const {
    detail::CheckStatus("pexquo::stream::save(\"" + path.string() + "\")",
                        quoSaveStream(handle_, path.c_str()), where);
  }

  /// The stream of a file; it goes on where the saved one stood.
  /// \throws file_error if it cannot be read or is no stream
  /// \throws stream_error for want of memory
  [[nodiscard]] static stream load(const std::filesystem::path& path,
                                   std::source_location where = std::source_location::current()) {
    stream s;
    detail::CheckStatus("pexquo::stream::load(\"" + path.string() + "\")",
                        quoLoadStream(&s.handle_, path.c_str()), where);
    return s;
  }

  /// The generator, without the member.
  generator kind() const { return generator{(Id() >> 20) << 20}; }
  /// The member of a family; 0 for other generators.
  std::int32_t member_number() const { return Id() & 0xFFFFF; }
  /// Whether skip works.
  bool can_skip() const {
    stream probe(*this);
    return quoSkipAheadStream(probe.handle_, 0) >= 0;
  }

  /// The stream as the C interface knows it, still owned by this; null when moved from.
  QuoStream* handle() const noexcept { return handle_; }
  /// The same, given up.
  [[nodiscard]] QuoStream* release() noexcept { return std::exchange(handle_, nullptr); }

 private:
  stream() = default;

  // In the newer of the two numberings; those of files may be in the older one.
  std::int32_t Id() const {
    const std::int32_t id = quoGetStreamBrng(handle_);
    detail::CheckStatus("pexquo::stream", id, std::source_location::current());
    constexpr std::int32_t kFirstWh = 4, kSobol = 277;
    if (id >= QUO_BRNG_MCG31M1) return id;
    if (id < kFirstWh) return (id + 1) << 20;
    if (id < kSobol) return QUO_BRNG_WH + (id - kFirstWh);
    return id == kSobol ? QUO_BRNG_SOBOL : QUO_BRNG_NIEDERR;
  }

  QuoStream* handle_ = nullptr;
};

/// The members of a family, seeded alike: streams for workers, each a generator of its own. Each
/// member is made when it is asked for, always the same. Seeded alike, the members' first numbers
/// are alike (MT2203: some 200 words; WH: a few numbers): pass over 1000 numbers where that
/// matters.
///
/// \code
/// const pexquo::family workers(pexquo::generator::mt2203, 42);
/// pexquo::stream seventh = workers[7];
/// \endcode
class family {
 public:
  /// The members of a generator, from one seed.
  family(generator g, seed_words seed) : generator_(g), seed_(std::move(seed)) {}
  /// The same by the name.
  /// \throws argument_error for an unknown one
  family(std::string_view generator_name, seed_words seed,
         std::source_location where = std::source_location::current())
      : family(generator_named(generator_name, where), std::move(seed)) {}

  /// How many there are.
  std::size_t size() const noexcept { return static_cast<std::size_t>(members(generator_)); }
  /// A new stream of member i.
  /// \throws argument_error if there is none
  [[nodiscard]] stream operator[](std::size_t i) const {
    if (i >= size()) {
      throw argument_error("pexquo::family", "there is no member " + std::to_string(i),
                           QUO_INVALID_BRNG, std::source_location::current());
    }
    return {generator_, member{static_cast<std::int32_t>(i)}, seed_};
  }

 private:
  generator generator_;
  seed_words seed_;
};

}  // namespace pexquo

#endif  // PEXQUO_STREAM_HPP_
