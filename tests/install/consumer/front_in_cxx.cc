#include <pexquo/pexquo.hpp>

#include <vector>

int main() {
  pexquo::stream s("mt2203", pexquo::member{7}, 42);
  std::vector<double> x(100'000);
  const pexquo::parallel cores;
  cores.fill(pexquo::normal{}, s, x);
  cores.apply(pexquo::exp, x, x);
  return x[0] > 0 ? 0 : 1;
}
