// Boost.Math's inverse error functions, in scalar loops: it has no vector form, and nobody else has
// these functions. Without its promotion to wider types, which would take longer.
#include <boost/math/distributions/normal.hpp>
#include <boost/math/special_functions/erf.hpp>

#include "bench/peers_level.h"

namespace bench {
namespace {

namespace policies = boost::math::policies;
using Policy = policies::policy<policies::promote_float<false>, policies::promote_double<false>,
                                policies::domain_error<policies::ignore_error>,
                                policies::overflow_error<policies::ignore_error>>;

template <typename T>
T ErfInv(T a) {
  return boost::math::erf_inv(a, Policy());
}
template <typename T>
T ErfcInv(T a) {
  return boost::math::erfc_inv(a, Policy());
}
template <typename T>
T CdfNormInv(T a) {
  return quantile(boost::math::normal_distribution<T, Policy>(), a);
}

template <typename T, T (*kFunction)(T)>
void Loop(int n, const T* a, const T*, T* r, T*) {
  for (int i = 0; i < n; ++i) r[i] = kFunction(a[i]);
}

constexpr Peer kRows[] = {
    {"ErfInv", "Boost scalar", 2.0, Loop<double, ErfInv>, nullptr},
    {"ErfInv", "Boost scalar", 2.0, nullptr, Loop<float, ErfInv>},
    {"ErfcInv", "Boost scalar", 2.0, Loop<double, ErfcInv>, nullptr},
    {"ErfcInv", "Boost scalar", 2.0, nullptr, Loop<float, ErfcInv>},
    {"CdfNormInv", "Boost scalar", 2.0, Loop<double, CdfNormInv>, nullptr},
    {"CdfNormInv", "Boost scalar", 2.0, nullptr, Loop<float, CdfNormInv>},
};

}  // namespace

PeerRows PeersBoost() { return {kRows, static_cast<int>(sizeof kRows / sizeof *kRows)}; }

}  // namespace bench
