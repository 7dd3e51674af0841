// The catalogued functions under their public names, called alike whatever their shape.
#ifndef TESTS_FRONT_FRONT_FUNCTIONS_H_
#define TESTS_FRONT_FRONT_FUNCTIONS_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "catalogue/catalogue.h"

struct FrontFunction {
  std::string_view name;  // "Exp"
  char type;              // d, s, z, c
  // By the thread's mode, and with one for the call. Second arguments and results are ignored where
  // there is none; a scalar one is b[0].
  int32_t (*call)(int64_t n, const void* a, const void* b, void* r1, void* r2);
  int32_t (*call_with_mode)(int64_t n, const void* a, const void* b, void* r1, void* r2,
                            uint32_t mode);

  std::string public_name() const { return "v" + std::string(1, type) + std::string(name); }
  bool is_complex() const { return type == 'z' || type == 'c'; }
  const pex::Function& function() const {
    return is_complex() ? *pex::FindComplexFunction(name) : *pex::FindFunction(name);
  }
  // The kernel that an accuracy (PEX_ACCURACY_... or anything else) takes.
  const pex::Entry& Kernel(uint32_t accuracy) const;
};

// All of them.
std::span<const FrontFunction> FrontFunctions();

#endif  // TESTS_FRONT_FRONT_FUNCTIONS_H_
