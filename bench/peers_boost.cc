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

#define DOUBLE(function, name, ulp, Policy) \
  { #function, name, ulp, Loop < double, function < double, Policy>>, nullptr }
#define SINGLE(function, name, ulp, Policy) \
  { #function, name, ulp, nullptr, Loop < float, function < float, Policy>> }

constexpr Peer kRows[] = {
    DOUBLE(ErfInv, "Boost scalar", 1.5, Wide),
    SINGLE(ErfInv, "Boost scalar", 0.6, Wide),
    DOUBLE(ErfInv, "Boost narrow", 4.0, Narrow),
    SINGLE(ErfInv, "Boost narrow", 4.0, Narrow),
    DOUBLE(ErfcInv, "Boost scalar", 1.5, Wide),
    SINGLE(ErfcInv, "Boost scalar", 0.6, Wide),
    DOUBLE(ErfcInv, "Boost narrow", 4.0, Narrow),
    SINGLE(ErfcInv, "Boost narrow", 4.0, Narrow),
    DOUBLE(CdfNormInv, "Boost scalar", 2.5, Wide),
    SINGLE(CdfNormInv, "Boost scalar", 2.0, Wide),
    DOUBLE(CdfNormInv, "Boost narrow", 4.0, Narrow),
    SINGLE(CdfNormInv, "Boost narrow", 4.0, Narrow),
};

}  // namespace

PeerRows PeersBoost() { return {kRows, static_cast<int>(sizeof kRows / sizeof *kRows)}; }

}  // namespace bench
