/// \file
/// pexquo for C++20: vector functions over ranges, random streams and distributions, many cores.
/// Header-only over the C interface (pexquo/pexquo.h): link with libpexquo_front.
///
/// \code
/// #include <pexquo/pexquo.hpp>
///
/// pexquo::stream s("mrg32k3a", 2026);                   // a random stream
/// std::vector<double> x(1'000'000), y(x.size());
/// pexquo::parallel cores;                               // this machine's
/// cores.fill(pexquo::normal{0, 1}, s, x);               // the same numbers on any number of cores
/// cores.apply(pexquo::exp, x, y);                       // y[i] = e^x[i]
/// \endcode
///
/// The parts: pexquo/functions.hpp and pexquo/function_list.hpp (functions), pexquo/error_scope.hpp
/// (special elements), pexquo/error.hpp (exceptions), pexquo/stream.hpp, pexquo/distributions.hpp,
/// pexquo/bit_generator.hpp (for the standard library's algorithms), pexquo/parallel.hpp.
///
/// Results have the same bits on every processor. All functions may be called from any thread.
#ifndef PEXQUO_PEXQUO_HPP_
#define PEXQUO_PEXQUO_HPP_

#include "pexquo/bit_generator.hpp"
#include "pexquo/distributions.hpp"
#include "pexquo/error.hpp"
#include "pexquo/error_scope.hpp"
#include "pexquo/functions.hpp"
#include "pexquo/parallel.hpp"
#include "pexquo/stream.hpp"

#endif  // PEXQUO_PEXQUO_HPP_
