// Writes quo_sub_kernel/wh/wh_tables.h: multipliers, moduli and reciprocals of the WH members.
//
// A row follows from its first modulus by two rules: the next modulus is the next smaller prime m
// whose (m - 1)/2 is coprime to those of the moduli already in the row, which makes the period
// 2 times the product of all (m - 1)/2; the multiplier is the largest primitive root in 112 .. 127
// that the row does not use yet.
//
// Five rows and the two ends of the range of moduli are given. The other rows are taken from the
// candidates, over all first moduli, that do best in the spectral test: from as few of the best as
// hold enough rows without a common modulus. A member is a
// single multiplicative generator in disguise: its output is X/M mod 1 with M = m1 m2 m3 m4, and X
// runs by X' = A X mod M, where A is a_j modulo each m_j. So the test takes the lattice of A modulo
// M: with nu_t the length of the shortest vector (v_1, .., v_t) != 0 such that the sum of v_i
// A^(i-1) is 0 modulo M, S_t = nu_t / (gamma_t^(1/2) M^(1/t)), where gamma_t is Hermite's constant,
// is at most 1; a row's merit is the least S_t for t = 2 .. 8. (Knuth, The Art of Computer
// Programming, volume 2, section 3.3.4; U. Fincke and M. Pohst, Math. Comp. 44 (1985) 463-471.)
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <set>
#include <vector>

namespace {

using Int = __int128;
using Real = long double;

constexpr int kRows = 273;
constexpr uint32_t kLowest = 16718909, kHighest = 16776971;
constexpr uint32_t kLeastMultiplier = 112, kLargestMultiplier = 127;
constexpr int kDimensions = 8;

struct Row {
  std::array<uint32_t, 4> a, m;
  double merit;
};

uint32_t PowMod(uint64_t x, uint32_t e, uint32_t m) {
  uint64_t power = 1;
  for (; e != 0; e >>= 1, x = x * x % m) {
    if (e & 1) power = power * x % m;
  }
  return static_cast<uint32_t>(power);
}

std::vector<uint32_t> PrimeFactors(uint32_t n) {
  std::vector<uint32_t> factors;
  for (uint32_t p = 2; p * p <= n; ++p) {
    if (n % p != 0) continue;
    factors.push_back(p);
    while (n % p == 0) n /= p;
  }
  if (n > 1) factors.push_back(n);
  return factors;
}

bool IsPrime(uint32_t n) { return PrimeFactors(n).front() == n; }

// The largest primitive root of m that `used` does not hold, 0 if there is none.
uint32_t Multiplier(uint32_t m, const std::vector<uint32_t>& used) {
  const auto factors = PrimeFactors(m - 1);
  for (uint32_t a = kLargestMultiplier; a >= kLeastMultiplier; --a) {
    if (std::count(used.begin(), used.end(), a) != 0) continue;
    if (std::all_of(factors.begin(), factors.end(),
                    [&](uint32_t p) { return PowMod(a, (m - 1) / p, m) != 1; })) {
      return a;
    }
  }
  return 0;
}

// The row from its first modulus, primes[start]; false if it leaves the range.
bool MakeRow(const std::vector<uint32_t>& primes, size_t start, Row* row) {
  std::vector<uint32_t> m, a;
  for (size_t i = start; i < primes.size() && m.size() < 4; ++i) {
    const uint32_t p = primes[i];
    if (!std::all_of(m.begin(), m.end(),
                     [p](uint32_t q) { return std::gcd((p - 1) / 2, (q - 1) / 2) == 1; })) {
      continue;
    }
    const uint32_t multiplier = Multiplier(p, a);
    if (multiplier == 0) return false;
    m.push_back(p);
    a.push_back(multiplier);
  }
  if (m.size() < 4) return false;
  std::copy(m.begin(), m.end(), row->m.begin());
  std::copy(a.begin(), a.end(), row->a.begin());
  return true;
}

using Vector = std::array<Int, kDimensions>;

Real Dot(const Vector& x, const Vector& y) {
  Real sum = 0;
  for (int i = 0; i < kDimensions; ++i) sum += static_cast<Real>(x[i]) * static_cast<Real>(y[i]);
  return sum;
}

void Subtract(Vector& x, const Vector& y, Real factor) {
  const Int f = static_cast<Int>(factor);
  for (int i = 0; i < kDimensions; ++i) x[i] -= f * y[i];
}

// Gram-Schmidt coefficients mu and squared lengths of the orthogonal parts. The inner products are
// rounded, which suffices: bases come here nearly reduced, and the vectors themselves are exact.
struct Gram {
  Real mu[kDimensions][kDimensions];
  Real length[kDimensions];
  Gram(const std::vector<Vector>& basis) {
    for (size_t i = 0; i < basis.size(); ++i) {
      length[i] = Dot(basis[i], basis[i]);
      for (size_t j = 0; j < i; ++j) {
        Real c = Dot(basis[i], basis[j]);
        for (size_t k = 0; k < j; ++k) c -= mu[j][k] * mu[i][k] * length[k];
        mu[i][j] = c / length[j];
        length[i] -= mu[i][j] * mu[i][j] * length[j];
      }
    }
  }
};

// Subtracts multiples of the basis from a vector until its coordinates are at most 1/2 or so; a
// long vector takes several passes, as each finds only the leading bits of the multiples.
void ReduceBy(const std::vector<Vector>& basis, const Gram& gram, Vector& x) {
  for (bool again = true; again;) {
    again = false;
    std::vector<Real> c(basis.size());
    for (size_t i = 0; i < basis.size(); ++i) {
      c[i] = Dot(x, basis[i]);
      for (size_t k = 0; k < i; ++k) c[i] -= gram.mu[i][k] * gram.length[k] * c[k];
      c[i] /= gram.length[i];
    }
    for (size_t i = basis.size(); i-- > 0;) {
      const Real factor = std::round(c[i]);
      if (std::abs(c[i]) < 0.51L) continue;
      Subtract(x, basis[i], factor);
      for (size_t k = 0; k < i; ++k) c[k] -= factor * gram.mu[i][k];
      again = true;
    }
  }
}

// The reduction of Lenstra, Lenstra and Lovasz.
void Reduce(std::vector<Vector>& basis) {
  for (size_t k = 1; k < basis.size();) {
    const std::vector<Vector> before(basis.begin(), basis.begin() + k);
    ReduceBy(before, Gram(before), basis[k]);
    const Gram gram(std::vector<Vector>(basis.begin(), basis.begin() + k + 1));
    const Real mu = gram.mu[k][k - 1];
    if (gram.length[k] >= (0.99L - mu * mu) * gram.length[k - 1]) {
      ++k;
    } else {
      std::swap(basis[k], basis[k - 1]);
      k = k > 1 ? k - 1 : 1;
    }
  }
}

// The squared length of the shortest vector other than 0, all coordinates enumerated from the last.
struct Search {
  const Gram& gram;
  int dimension;
  Real best;
  Real coordinate[kDimensions] = {};
  void From(int i, Real sum) {
    if (i < 0) {
      if (sum > 0.5L) best = std::min(best, sum);
      return;
    }
    Real centre = 0;
    for (int j = i + 1; j < dimension; ++j) centre -= coordinate[j] * gram.mu[j][i];
    const Real radius = std::sqrt((best * (1 + 1e-9L) - sum) / gram.length[i]);
    for (Real x = std::ceil(centre - radius); x <= centre + radius; ++x) {
      coordinate[i] = x;
      const Real part = sum + (x - centre) * (x - centre) * gram.length[i];
      if (part <= best * (1 + 1e-9L)) From(i - 1, part);
    }
  }
};

Real ShortestSquared(const std::vector<Vector>& basis) {
  Real best = Dot(basis[0], basis[0]);
  for (const Vector& v : basis) best = std::min(best, Dot(v, v));
  const Gram gram(basis);
  Search search{gram, static_cast<int>(basis.size()), best};
  search.From(search.dimension - 1, 0);
  return search.best;
}

// A^e modulo M = m1 m2 m3 m4 from its residues.
Int CombinedPower(const Row& row, uint32_t e) {
  Int product = 1, sum = 0;
  for (uint32_t m : row.m) product *= m;
  for (int j = 0; j < 4; ++j) {
    const uint32_t m = row.m[j];
    const Int others = product / m;
    const uint64_t inverse = PowMod(static_cast<uint32_t>(others % m), m - 2, m);
    sum += others * static_cast<Int>(inverse * PowMod(row.a[j], e, m) % m);
  }
  return sum % product;
}

// Least S_t, t = 2 .. 8.
double Merit(const Row& row) {
  static const double kHermite[kDimensions + 1] = {0,
                                                   1,
                                                   2 / std::sqrt(3),
                                                   std::cbrt(2),
                                                   std::sqrt(2),
                                                   std::pow(8, 1.0 / 5),
                                                   std::pow(64.0 / 3, 1.0 / 6),
                                                   std::pow(64, 1.0 / 7),
                                                   2};
  Int product = 1;
  for (uint32_t m : row.m) product *= m;
  // In two dimensions by the algorithm of Gauss, which bears vectors of any length.
  std::vector<Vector> basis = {{product}, {-CombinedPower(row, 1), 1}};
  for (;;) {
    if (Dot(basis[0], basis[0]) > Dot(basis[1], basis[1])) std::swap(basis[0], basis[1]);
    const Real factor = std::round(Dot(basis[0], basis[1]) / Dot(basis[0], basis[0]));
    if (factor == 0) break;
    Subtract(basis[1], basis[0], factor);
  }
  double merit = 1;
  for (int t = 2; t <= kDimensions; ++t) {
    if (t > 2) {
      Vector next{-CombinedPower(row, t - 1)};
      next[t - 1] = 1;
      basis.push_back(next);
      Reduce(basis);
    }
    const double root = std::pow(static_cast<double>(product), 1.0 / t);
    const double nu = std::sqrt(static_cast<double>(ShortestSquared(basis)));
    merit = std::min(merit, nu / (std::sqrt(kHermite[t]) * root));
  }
  return merit;
}

// lcm(m1 - 1, .., m4 - 1).
Int Period(const Row& row) {
  Int period = 1;
  for (uint32_t m : row.m)
    period *= (m - 1) / std::gcd(static_cast<uint32_t>(period % (m - 1)), m - 1);
  return period;
}

// Rows without a common modulus.
struct Selection {
  std::vector<Row> rows;
  std::set<uint32_t> taken;
  bool Take(const Row& row) {
    for (uint32_t m : row.m) {
      if (taken.count(m) != 0) return false;
    }
    taken.insert(row.m.begin(), row.m.end());
    rows.push_back(row);
    return true;
  }
};

// Adds candidates until there are `wanted` rows, from the top of the range down: first the row that
// ends first, as one packs intervals.
std::vector<Row> Pack(Selection selection, std::vector<Row> candidates, size_t wanted) {
  std::sort(candidates.begin(), candidates.end(), [](const Row& x, const Row& y) {
    return x.m[3] != y.m[3] ? x.m[3] > y.m[3] : x.m[0] < y.m[0];
  });
  for (const Row& row : candidates) {
    if (selection.rows.size() < wanted) selection.Take(row);
  }
  return selection.rows;
}

template <class Print>
void PrintTable(const char* declaration, const std::vector<Row>& rows, Print print) {
  std::printf("\nalignas(64) inline constexpr %s[%d][4] = {\n", declaration, kRows);
  for (const Row& row : rows) {
    std::printf("    {");
    for (int j = 0; j < 4; ++j) {
      print(row, j);
      std::printf(j < 3 ? ", " : "},\n");
    }
  }
  std::printf("};\n");
}

}  // namespace

int main() {
  std::vector<uint32_t> primes;  // descending
  for (uint32_t p = kHighest; p >= kLowest; --p) {
    if (IsPrime(p)) primes.push_back(p);
  }
  std::vector<Row> candidates;
  for (size_t i = 0; i < primes.size(); ++i) {
    Row row;
    if (!MakeRow(primes, i, &row)) continue;
    row.merit = Merit(row);
    candidates.push_back(row);
  }
  const auto better = [](const Row& x, const Row& y) {
    return x.merit != y.merit ? x.merit > y.merit : x.m[0] > y.m[0];
  };
  std::sort(candidates.begin(), candidates.end(), better);

  Selection fixed;
  std::vector<Row> rows(kRows);
  std::vector<bool> given(kRows);
  const std::pair<int, uint32_t> kGiven[] = {
      {0, 16770647}, {1, 16770311}, {2, 16769807}, {136, 16758587}, {272, 16766363}};
  for (const auto& [index, first] : kGiven) {
    for (const Row& row : candidates) {
      if (row.m[0] == first && fixed.Take(row)) rows[index] = row, given[index] = true;
    }
  }
  fixed.rows.clear();
  for (uint32_t end : {kHighest, kLowest}) {
    for (const Row& row : candidates) {
      if (row.m[0] == end || row.m[3] == end) fixed.Take(row);
    }
  }
  const size_t wanted = kRows - std::size(kGiven);
  std::vector<Row> chosen;
  for (size_t best = wanted; chosen.size() < wanted; ++best) {
    if (best > candidates.size()) return EXIT_FAILURE;
    chosen = Pack(fixed, {candidates.begin(), candidates.begin() + best}, wanted);
  }
  std::sort(chosen.begin(), chosen.end(), better);
  for (int i = 0, next = 0; i < kRows; ++i) {
    if (!given[i]) rows[i] = chosen[next++];
  }

  const auto merit = [](const Row& x, const Row& y) { return x.merit < y.merit; };
  const auto period = [](const Row& x, const Row& y) { return Period(x) < Period(y); };
  const Row& shortest = *std::min_element(rows.begin(), rows.end(), period);
  const auto worst = std::min_element(rows.begin(), rows.end(), merit);
  std::printf(
      "// Generated by gen/wh_tables.cc: gen_wh_tables > quo_sub_kernel/wh/wh_tables.h\n"
      "//\n"
      "// The members of WH. Rows 0, 1, 2, 136 and 272 are given, the others come from %zu\n"
      "// candidates and stand in descending merit in the spectral test in 2 to 8 dimensions: "
      "from\n"
      "// %.4f down to %.4f, then the rows with the ends of the range, %.4f and %.4f.\n"
      "// Least merit of all rows: %.4f. Shortest period: 2^%.6f, that of row %d.\n"
      "#ifndef QUO_SUB_KERNEL_WH_WH_TABLES_H_\n#define QUO_SUB_KERNEL_WH_WH_TABLES_H_\n\n"
      "#include <cstdint>\n\nnamespace quo {\n\n// Multipliers.",
      candidates.size(), chosen.front().merit, chosen[wanted - 3].merit, chosen[wanted - 2].merit,
      chosen[wanted - 1].merit, worst->merit,
      static_cast<double>(std::log2(static_cast<Real>(Period(shortest)))),
      static_cast<int>(&shortest - rows.data()));
  PrintTable("uint8_t _quo_WH_A", rows, [](const Row& r, int j) { std::printf("%u", r.a[j]); });
  std::printf("\n// Moduli.");
  PrintTable("uint32_t _quo_WH_M", rows, [](const Row& r, int j) { std::printf("%u", r.m[j]); });
  std::printf("\n// The doubles nearest to 1/modulus.");
  PrintTable("double _quodWH_IM_Tab", rows,
             [](const Row& r, int j) { std::printf("%a", 1.0 / r.m[j]); });
  std::printf("\n}  // namespace quo\n\n#endif  // QUO_SUB_KERNEL_WH_WH_TABLES_H_\n");
}
