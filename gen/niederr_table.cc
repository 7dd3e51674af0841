// Writes the polynomials of the Niederreiter sequence in base 2 and their numerators.
//
// gen_niederr_table > quo_sub_kernel/niederr/niederr_table.h
//
// The polynomials are the irreducible ones in order of degree and value, found by division. The
// numerator y of p, of lower degree, is one with which the continued fraction of y/p has partial
// quotients of degree 1 throughout, of which every irreducible polynomial over GF(2) has one or two
// (J. P. Mesirov, M. M. Sweet, J. Number Theory 27 (1987) 144-148). It is given by the first digits
// of y/p behind the point; of two the one with the greater fraction is taken.
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kDimensions = 318;

int Degree(uint32_t p) { return std::bit_width(p) - 1; }

struct Quotient {
  uint32_t quotient, rest;
};
Quotient Divide(uint32_t a, uint32_t p) {
  uint32_t quotient = 0;
  while (Degree(a) >= Degree(p)) {
    const int shift = Degree(a) - Degree(p);
    quotient |= 1u << shift;
    a ^= p << shift;
  }
  return {quotient, a};
}

bool IsIrreducible(uint32_t p) {
  for (uint32_t d = 2; 2 * Degree(d) <= Degree(p); ++d) {
    if (Divide(p, d).rest == 0) return false;
  }
  return true;
}

// Whether p/y has partial quotients of degree 1 alone.
bool IsFlat(uint32_t p, uint32_t y) {
  while (y != 0) {
    const Quotient q = Divide(p, y);
    if (Degree(q.quotient) != 1) return false;
    p = y;
    y = q.rest;
  }
  return p == 1;
}

// The first e digits of y/p, the first one lowest.
uint32_t Digits(uint32_t y, uint32_t p) {
  uint32_t digits = 0;
  for (int k = 0; k < Degree(p); ++k) {
    const Quotient q = Divide(y << 1, p);
    digits |= q.quotient << k;
    y = q.rest;
  }
  return digits;
}

uint32_t Reversed(uint32_t digits, int e) {
  uint32_t r = 0;
  for (int k = 0; k < e; ++k) r |= (digits >> k & 1) << (e - 1 - k);
  return r;
}

uint32_t BestDigits(uint32_t p) {
  const int e = Degree(p);
  uint32_t best = 0;
  for (uint32_t y = 1u << (e - 1); y < 1u << e; ++y) {
    if (!IsFlat(p, y)) continue;
    const uint32_t digits = Digits(y, p);
    if (best == 0 || Reversed(digits, e) > Reversed(best, e)) best = digits;
  }
  if (best == 0) {
    std::fprintf(stderr, "no numerator for %u\n", p);
    std::exit(1);
  }
  return best;
}

}  // namespace

int main() {
  std::puts(
      "// Made by gen_niederr_table: the irreducible polynomials over GF(2) in order of degree "
      "and\n"
      "// value, and the first digits of y/p for the numerator y of each.\n"
      "#ifndef QUO_SUB_KERNEL_NIEDERR_NIEDERR_TABLE_H_\n"
      "#define QUO_SUB_KERNEL_NIEDERR_NIEDERR_TABLE_H_\n"
      "\n"
      "#include <cstdint>\n"
      "\n"
      "namespace quo {\n"
      "\n"
      "struct NiederrCoordinate {\n"
      "  uint16_t polynomial;  // bit k is the coefficient of x^k\n"
      "  uint16_t digits;      // bit k is the coefficient of x^(-k-1) in y/p, k below the degree\n"
      "};\n"
      "\n"
      "// clang-format off");
  std::printf("inline constexpr NiederrCoordinate kNiederrTable[%d] = {\n", kDimensions);
  int found = 0;
  for (uint32_t p = 2; found < kDimensions; ++p) {
    if (!IsIrreducible(p)) continue;
    std::printf("%s{%u, %u},%s", found % 6 == 0 ? "    " : " ", p, BestDigits(p),
                found % 6 == 5 || found == kDimensions - 1 ? "\n" : "");
    ++found;
  }
  std::puts(
      "};\n"
      "// clang-format on\n"
      "\n"
      "}  // namespace quo\n"
      "\n"
      "#endif  // QUO_SUB_KERNEL_NIEDERR_NIEDERR_TABLE_H_");
}
