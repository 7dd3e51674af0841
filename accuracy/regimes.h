// Where an entry is measured: named sets of arguments.
#ifndef ACCURACY_REGIMES_H_
#define ACCURACY_REGIMES_H_

#include <cstdint>
#include <filesystem>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "accuracy/oracle.h"

namespace pex::accuracy {

using Random = std::mt19937_64;

// Points of one regime. Point i depends on i and on the state of the generator alone, so a regime
// can be cut into chunks in any way that reseeds the generator by the chunk.
struct Regime {
  std::string name;
  uint64_t points = 0;
  // Writes points first, first + 1, ...; all representable in the entry's type.
  std::function<void(uint64_t first, Random&, std::span<double>)> fill;
};

// The regimes of the first argument with about `count` points each (fewer where the set is finite):
//   typical      uniform over the catalogue's range
//   whole        half: all bit patterns; half: both signs, magnitudes log-uniform in 2^-64 .. 2^64
//   marks        around each mark of the catalogue: half: the nearest numbers on both sides; half:
//                distances log-uniform from one unit up to the mark's size and on to 2^-64
//   zeros-ones   the same around 0, 1 and the zeros and ones of the function
//   subnormals   subnormal arguments, and arguments with subnormal or hardly normal results
//   integers     small integers and halves, powers of two and ten, their neighbours
//   recorded     the worst cases on record that the type represents
std::vector<Regime> RegimesOf(const Entry& entry, const Oracle& oracle, uint64_t count,
                              const std::vector<double>& recorded);

// Around given points, as for `marks`.
Regime Around(std::string name, const std::vector<double>& points, bool single, uint64_t count);

// The second arguments of a regime's points, for the first arguments a: in the regime `typical`
// uniform over the catalogue's range of the second argument; in the others a quarter of those, a
// quarter from `whole`, a quarter small integers, halves and thirds, and a quarter beside the first
// argument: for powers such that the result lies anywhere from underflow to overflow or next to
// their thresholds, for the others a times a power of two, often 1.
void SecondArguments(const Entry& entry, std::string_view regime, Random& random,
                     std::span<const double> a, std::span<double> b);

// The recorded worst cases of a function: DIRECTORY/NAME.txt, one hexadecimal number a line, blank
// lines and lines from `#` on left out. Empty when there is no such file; throws
// std::runtime_error naming file and line when a line is no number.
std::filesystem::path RecordFile(const std::filesystem::path& directory, const Function& function);
std::vector<double> ReadRecord(const std::filesystem::path& file);
// Appends the cases that are not there yet, below a comment; returns how many were new.
int AppendRecord(const std::filesystem::path& file, const std::string& comment,
                 const std::vector<double>& cases);

// Uniform in [0, 1).
inline double Unit(Random& random) { return static_cast<double>(random() >> 11) * 0x1p-53; }

// x, or x rounded to single precision.
double ToType(double x, bool single);

// The k-th number of the type above (below for k < 0) c, infinities at the ends; crosses zero.
double Neighbour(double c, int64_t k, bool single);

// "0x1.8p+1", exactly; "inf", "nan".
std::string Hex(double x);

}  // namespace pex::accuracy

#endif  // ACCURACY_REGIMES_H_
