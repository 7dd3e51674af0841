// The mean distance of two random points of a cube, by Monte Carlo over any number of MPI ranks:
//
//   mpirun -n 4 mean_distance [LAYOUT [BLOCKS [PAIRS [SEED]]]]
//
// BLOCKS (256) blocks of PAIRS (40000) pairs of points each, SEED (1976) a 32-bit word. The layout
// says where a block's numbers come from; a rank makes its streams alone, without a message:
//
//   mrg32k3a, mcg59  one sequence cut into blocks, each found by skipping ahead
//   mt2203, wh       a family: block b is member b, so at most 1024 or 273 blocks
//
// Standard output is the same to the last bit for any number of ranks, on any processors: a block
// is the same work whoever does it, the vector functions have the same bits everywhere, and sums
// are kept in fixed point, where the order of addition does not matter. The exact mean is known:
// Robbins constant (D. P. Robbins and T. S. Bolis, Amer. Math. Monthly 85 (1978), 277-278). Ends
// with status 1 when the estimate lies more than four standard errors away, or after an error.
#include <mpi.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string_view>

#include "pexquo/pex.h"
#include "pexquo/quo.h"

namespace {

constexpr double kRobbins = 0.66170718226717623516;
constexpr int32_t kBatch = 500;             // pairs at a time
constexpr int32_t kDraws = 6;               // uniforms of a pair
constexpr int64_t kMostPairs = 1 << 20;     // of a block: its sums of at most 3 x 2^40 fit 63 bits
constexpr uint64_t kWarmUp = 1000;          // draws of WH passed over: members start alike
constexpr int64_t kMostBlocks = INT32_MAX;  // so that sums of halves fit 63 bits

struct Layout {
  std::string_view name;
  int32_t generator;
  uint32_t members;  // 0: one sequence, cut into blocks
  uint64_t longest;  // that sequence: its period, or 2^64 - 1, as far as a skip reaches
};
constexpr Layout kLayouts[] = {
    {"mrg32k3a", QUO_BRNG_MRG32K3A, 0, UINT64_MAX},
    {"mcg59", QUO_BRNG_MCG59, 0, uint64_t{1} << 57},  // of an odd seed
    {"mt2203", QUO_BRNG_MT2203, 1024, 0},
    {"wh", QUO_BRNG_WH, 273, 0},
};

struct Work {
  const Layout* layout = &kLayouts[0];
  uint32_t blocks = 256;
  uint32_t pairs = 40000;
  uint32_t seed = 1976;

  // From the beginning of a block to that of the next. Numbers of MCG59 that are a multiple of a
  // large power of 2 apart are related: one number is left out to make the distance odd.
  uint64_t Stride() const {
    const uint64_t draws = uint64_t{pairs} * kDraws;
    return layout->generator == QUO_BRNG_MCG59 ? draws | 1 : draws;
  }
};

// A sum of non-negative numbers in units of 2^-40, as two halves of 32 bits, each in a word with
// room for carries: words are added without loss in any order, over the ranks too.
struct FixedSum {
  int64_t high = 0, low = 0;

  static int64_t Units(double x) { return static_cast<int64_t>(x * 0x1p40 + 0.5); }
  void Add(int64_t units) {
    high += units >> 32;
    low += units & 0xFFFFFFFF;
  }
  double Value() const {
    return static_cast<double>(high) * 0x1p-8 + static_cast<double>(low) * 0x1p-40;
  }
};

struct Sums {
  FixedSum distance, square;
};
static_assert(sizeof(Sums) == 4 * sizeof(int64_t));  // what MPI_Reduce adds

class Stream {
 public:
  Stream() = default;
  Stream(const Stream&) = delete;
  ~Stream() { Close(); }

  // Stands where the block begins.
  bool Open(const Work& work, uint32_t block) {
    Close();
    if (work.layout->members == 0) {
      // 2 seed + 1, as an even one would shorten the period of MCG59.
      const uint32_t seed[] = {work.seed << 1 | 1, work.seed >> 31};
      return __quoNewStreamEx(&stream_, work.layout->generator, 2, seed) == QUO_OK &&
             __quoSkipAheadStream(stream_, block * work.Stride()) == QUO_OK;
    }
    // Members of one seed start alike: each gets its own.
    const uint32_t seed[] = {work.seed, block + 1};
    const auto member = work.layout->generator + static_cast<int32_t>(block);
    return __quoNewStreamEx(&stream_, member, 2, seed) == QUO_OK &&
           (work.layout->generator != QUO_BRNG_WH ||
            __quoSkipAheadStream(stream_, kWarmUp) == QUO_OK);
  }
  StreamState* get() const { return stream_; }

 private:
  void Close() { __quoDeleteStream(&stream_); }
  StreamState* stream_ = nullptr;
};

// A block's sums.
bool AddBlock(StreamState* stream, int32_t pairs, Sums* sums) {
  std::array<double, kDraws * kBatch> u;
  std::array<double, kBatch> square, distance;
  int64_t distances = 0, squares = 0;
  for (int32_t done = 0; done < pairs; done += kBatch) {
    const int32_t n = std::min(kBatch, pairs - done);
    if (_quodRngUniform(0, stream, kDraws * n, u.data(), 0, 1) != QUO_OK) return false;
    // x, y and z of n points, then of n others.
    _pexdSub(3 * n, u.data(), u.data() + 3 * n, u.data());
    _pexdSqr(3 * n, u.data(), u.data());
    _pexdAdd(n, u.data(), u.data() + n, square.data());
    _pexdAdd(n, square.data(), u.data() + 2 * n, square.data());
    _pexdSqrt_HA(n, square.data(), distance.data());
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
      distances += FixedSum::Units(distance[i]);
      squares += FixedSum::Units(square[i]);
    }
  }
  sums->distance.Add(distances);
  sums->square.Add(squares);
  return true;
}

// The share of one rank: consecutive blocks.
bool AddShare(const Work& work, int rank, int ranks, Sums* sums) {
  const auto first = [&](int r) {
    return static_cast<uint32_t>(uint64_t{work.blocks} * static_cast<unsigned>(r) /
                                 static_cast<unsigned>(ranks));
  };
  Stream stream;
  for (uint32_t block = first(rank); block < first(rank + 1); ++block) {
    if (!stream.Open(work, block)) return false;
    if (!AddBlock(stream.get(), static_cast<int32_t>(work.pairs), sums)) return false;
  }
  return true;
}

std::optional<uint32_t> ReadNumber(std::string_view text) {
  uint32_t number;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), number);
  if (error != std::errc() || end != text.end()) return std::nullopt;
  return number;
}

// Null, or what is wrong with the arguments.
const char* ReadArguments(int argc, char** argv, Work* work) {
  uint32_t* const numbers[] = {&work->blocks, &work->pairs, &work->seed};
  if (argc > 5) return "more than four arguments";
  if (argc > 1) {
    work->layout = std::ranges::find(kLayouts, std::string_view(argv[1]), &Layout::name);
    if (work->layout == std::end(kLayouts)) return "the layouts are mrg32k3a, mcg59, mt2203, wh";
  }
  for (int i = 2; i < argc; ++i) {
    const auto number = ReadNumber(argv[i]);
    if (!number) return "not a 32-bit number";
    *numbers[i - 2] = *number;
  }
  if (work->blocks == 0 || work->blocks > kMostBlocks) return "from 1 to 2147483647 blocks";
  if (work->pairs == 0 || work->pairs > kMostPairs) return "from 1 to 1048576 pairs a block";
  if (work->layout->members == 0 && work->blocks > work->layout->longest / work->Stride()) {
    return "the sequence is not that long";
  }
  if (work->layout->members != 0 && work->blocks > work->layout->members) {
    return "more blocks than the family has members";
  }
  return nullptr;
}

bool Print(const Work& work, const Sums& sums) {
  const double pairs = static_cast<double>(work.blocks) * work.pairs;
  const double mean = sums.distance.Value() / pairs;
  const double variance = sums.square.Value() / pairs - mean * mean;
  const double deviation = std::sqrt(variance / pairs);
  std::printf("%.*s, %u blocks of %u pairs\n", static_cast<int>(work.layout->name.size()),
              work.layout->name.data(), work.blocks, work.pairs);
  std::printf("mean distance %.15f (%a), standard error %.2g\n", mean, mean, deviation);
  std::printf("exactly       %.15f, %.2f standard errors away\n", kRobbins,
              std::fabs(mean - kRobbins) / deviation);
  return std::fabs(mean - kRobbins) <= 4 * deviation;
}

}  // namespace

int main(int argc, char** argv) {
  MPI_Init(&argc, &argv);
  int rank, ranks;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  MPI_Comm_size(MPI_COMM_WORLD, &ranks);
  Work work;
  if (const char* const wrong = ReadArguments(argc, argv, &work)) {
    if (rank == 0) std::fprintf(stderr, "mean_distance: %s\n", wrong);
    MPI_Finalize();
    return 1;
  }
  Sums mine, sums;
  if (!AddShare(work, rank, ranks, &mine)) {
    std::fprintf(stderr, "mean_distance: no stream on rank %d\n", rank);
    MPI_Abort(MPI_COMM_WORLD, 1);
  }
  MPI_Reduce(&mine, &sums, 4, MPI_INT64_T, MPI_SUM, 0, MPI_COMM_WORLD);
  if (rank == 0) std::fprintf(stderr, "%d ranks\n", ranks);
  const bool near = rank != 0 || Print(work, sums);
  MPI_Finalize();
  return near ? 0 : 1;
}
