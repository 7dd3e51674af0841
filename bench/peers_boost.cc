// Boost.Math's inverse error functions, in scalar loops: it has no vector form, and nobody else has
// these functions. As it comes, computing in the next wider type, and, faster, in the type itself.
#include <boost/math/distributions/normal.hpp>
#include <boost/math/special_functions/erf.hpp>

#include "bench/peers_level.h"

namespace bench {
namespace {

namespace policies = boost::math::policies;
using policies::domain_error, policies::overflow_error, policies::ignore_error;
using Wide = policies::policy<domain_error<ignore_error>, overflow_error<ignore_error>>;
using Narrow = policies::policy<domain_error<ignore_error>, overflow_error<ignore_error>,
                                policies::promote_float<false>, policies::promote_double<false>>;

template <typename T, class Policy>
T ErfInv(T a) {
  return boost::math::erf_inv(a, Policy());
}
template <typename T, class Policy>
T ErfcInv(T a) {
  return boost::math::erfc_inv(a, Policy());
}
template <typename T, class Policy>
T CdfNormInv(T a) {
  return quantile(boost::math::normal_distribution<T, Policy>(), a);
}

template <typename T, T (*kFunction)(T)>
void Loop(int n, const T* a, const T*, T* r, T*) {
  for (int i = 0; i < n; ++i) r[i] = kFunction(a[i]);
}

// With the errors as it comes, in double and single.
#define BOOST(function, ulp_d, ulp_s)                                                      \
  {#function, "Boost scalar", ulp_d, Loop<double, function<double, Wide>>, nullptr},       \
      {#function, "Boost scalar", ulp_s, nullptr, Loop<float, function<float, Wide>>},     \
      {#function, "Boost narrow", 3.5, Loop<double, function<double, Narrow>>, nullptr}, { \
#function, "Boost narrow", 3.5, nullptr, Loop < float, function < float, Narrow>>      \
  }

constexpr Peer kRows[] = {
    BOOST(ErfInv, 1.5, 0.6),
    BOOST(ErfcInv, 1.5, 0.6),
    BOOST(CdfNormInv, 2.5, 2.0),
};

}  // namespace

PeerRows PeersBoost() { return {kRows, static_cast<int>(sizeof kRows / sizeof *kRows)}; }

}  // namespace bench
