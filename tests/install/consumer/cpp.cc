// The C++ interface: normal numbers and their exponentials on all cores and on one, a refused
// parameter.
#include <cstdio>
#include <pexquo/pexquo.hpp>
#include <vector>

int main() {
  std::vector<double> x(100000), y(x.size()), x1(x.size()), y1(x.size());
  pexquo::stream s("mrg32k3a", 2026), s1("mrg32k3a", 2026);
  pexquo::parallel cores;
  cores.fill(pexquo::normal{0, 1}, s, x);
  cores.apply(pexquo::exp, x, y);
  pexquo::normal{0, 1}.fill(s1, x1);
  pexquo::exp(x1, y1);
  if (x != x1 || y != y1) return 1;
  try {
    pexquo::normal{0, -1}.fill(s, x);
    return 1;
  } catch (const std::exception& e) {
    std::printf("%s\n", e.what());
  }
  return 0;
}
