/// \file
/// Distributions. Included by pexquo/pexquo.hpp.
///
/// A distribution is a small object of its parameters, which have standard values; it draws from
/// any stream and keeps nothing:
///
/// \code
/// pexquo::stream s("mrg32k3a", 1);
/// std::vector<double> x(1000);
/// pexquo::normal{0, 1}.fill(s, x);                      // every element
/// const auto waits = pexquo::exponential{}.sample(s, 10);    // a new vector<double>
/// const auto coarse = pexquo::exponential{}.sample<float>(s, 10);
/// const int heads = pexquo::bernoulli{0.5}(s);               // one number
/// pexquo::normal{0, -1}.fill(s, x);                     // throws pexquo::argument_error
/// \endcode
///
/// Continuous ones fill contiguous ranges of double or float, in which the parameters are rounded
/// to float; discrete ones fill ranges of std::int32_t. Numbers do not depend on how they are asked
/// for: filling n and then m elements gives the same as filling n + m. Parameters are checked when
/// numbers are drawn: argument_error, before the stream has moved. stream_error comes from streams.
/// The formulas are those of pexquo/quo.h.
#ifndef PEXQUO_DISTRIBUTIONS_HPP_
#define PEXQUO_DISTRIBUTIONS_HPP_

#include "pexquo/continuous.hpp"    // IWYU pragma: export
#include "pexquo/discrete.hpp"      // IWYU pragma: export
#include "pexquo/distribution.hpp"  // IWYU pragma: export

#endif  // PEXQUO_DISTRIBUTIONS_HPP_
