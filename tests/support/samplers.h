// Every way to draw scalars that the catalogue knows: entries by methods, with parameters that are
// not the plainest.
#ifndef TESTS_SUPPORT_SAMPLERS_H_
#define TESTS_SUPPORT_SAMPLERS_H_

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"

struct Drawing {
  const quo::Sampler* sampler;
  uint32_t method;
  std::string name;  // "_quodRngGaussian" or "_quodRngGaussian:icdf"
  std::array<double, quo::kMaxParameters> parameters;

  // Bytes of a result, where the generator's words have `word` bytes.
  size_t ResultSize(size_t word) const {
    return sampler->type == 'w' ? word : sampler->type == 'd' ? 8 : 4;
  }
  int32_t operator()(StreamState* stream, int32_t n, void* r) const {
    return sampler->draw(method, stream, n, r, parameters.data());
  }
};

inline std::vector<Drawing> AllDrawings() {
  std::vector<Drawing> all;
  for (const quo::Sampler& sampler : quo::Samplers()) {
    const quo::Distribution& distribution = *sampler.distribution;
    auto parameters = distribution.ShownParameters();
    if (sampler.type == 'i' && distribution.name == "uniform") parameters = {-6, 10};
    std::string_view methods = distribution.methods;
    uint32_t method = 0;
    do {
      const std::string_view word = methods.substr(0, methods.find(' '));
      std::string name(sampler.symbol);
      if (!word.empty()) name.append(":").append(word);
      all.push_back({&sampler, method++, name, parameters});
      methods.remove_prefix(std::min(methods.size(), word.size() + 1));
    } while (!methods.empty());
  }
  return all;
}

#endif  // TESTS_SUPPORT_SAMPLERS_H_
