// The first five minutes in C++: functions over ranges, special elements, random streams, all
// cores.
//
//     c++ -std=c++20 quickstart.cc $(pkg-config --cflags --libs pexquo-front) && ./a.out
#include <pexquo/pexquo.hpp>

#include <algorithm>
#include <complex>
#include <cstdio>
#include <numeric>
#include <vector>

int main() {
  // A function takes ranges, or gives back what it is given: vectors, numbers, complex ones.
  const std::vector<double> x = {0.5, 1, 2};
  std::vector<double> y(x.size());
  pexquo::exp(x, y);
  std::printf("exp(0.5, 1, 2) = %.15f %.15f %.15f\n", y[0], y[1], y[2]);
  pexquo::exp(x, y, pexquo::tier::ep);  // faster, with 26 correct bits
  std::printf("fast:            %.15f %.15f %.15f\n", y[0], y[1], y[2]);
  const auto [sine, cosine] = pexquo::sincos(x);
  const std::complex<double> root = pexquo::sqrt(std::complex<double>(-4, 0));
  std::printf("sin 1 = %.15f, cos 1 = %.15f, sqrt(-4) = %gi\n\n", sine[1], cosine[1], root.imag());

  // Special elements are collected while a scope lives, and may be replaced.
  {
    pexquo::error_scope errors;
    (void)pexquo::ln(std::vector<double>{1, 0, -1});
    for (const auto& e : errors) std::printf("%s\n", e.text().c_str());
  }
  {
    pexquo::error_scope floor{{.replace = [](auto& e) { e.results()[0] = -745; }}};
    std::printf("replaced: ln(0) = %g\n\n", pexquo::ln(0.0));
  }

  // What makes no sense throws, and says where.
  try {
    pexquo::exp(x, std::span(y).first(2));
  } catch (const pexquo::error& e) {
    std::printf("%s\n\n", e.what());
  }

  // A stream is a generator and its place; distributions draw from it.
  pexquo::stream s("mrg32k3a", 2026);
  const auto heights = pexquo::normal{170, 10}.sample(s, 4);
  std::printf("heights: %.2f %.2f %.2f %.2f cm\n", heights[0], heights[1], heights[2], heights[3]);
  std::printf("a die: %d\n", pexquo::uniform_int{1, 7}(s));
  pexquo::bit_generator<pexquo::generator::mrg32k3a> bits(s);
  std::vector<int> cards = {1, 2, 3, 4, 5};
  std::shuffle(cards.begin(), cards.end(), bits);  // the standard library's algorithms
  std::printf("shuffled: %d %d %d %d %d\n\n", cards[0], cards[1], cards[2], cards[3], cards[4]);

  // All cores, and the same bits as with one: a million normal numbers and their exponentials.
  const pexquo::parallel cores, one(1);
  std::vector<double> z(1'000'000), alone(z.size());
  pexquo::stream copy = s;
  cores.fill(pexquo::normal{}, s, z);
  cores.apply(pexquo::exp, z, z);
  one.fill(pexquo::normal{}, copy, alone);
  one.apply(pexquo::exp, alone, alone);
  std::printf("mean of e^z: %.2f, which should be 1.65\n%s\n",
              std::accumulate(z.begin(), z.end(), 0.0) / static_cast<double>(z.size()),
              z == alone ? "one thread gives the same" : "the threads differ");
}
