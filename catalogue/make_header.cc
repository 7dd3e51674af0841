// Writes include/pexquo/pex_functions.h, the declarations of the catalogued functions, to standard
// output, with --front those of include/pexquo/front_functions.h, or with --markdown DOCS the text
// of DOCS/functions.md, with the errors of DOCS/accuracy.md and the plots beside it. It reads the
// rows alone, so that it runs before the library exists.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"

namespace {

#define PEX_TIERED(Name, shape_, ...) \
  pex::Function{.name = #Name, .shape = pex::Shape::shape_, .tiered = true, __VA_ARGS__},
#define PEX_PLAIN(Name, shape_, ...) \
  pex::Function{.name = #Name, .shape = pex::Shape::shape_, .tiered = false, __VA_ARGS__},
constexpr pex::Function kFunctions[] = {
#include "catalogue/functions.def"
};

#define PEX_COMPLEX_TIERED(Name, shape_, ...) \
  pex::Function{.name = #Name, .shape = pex::Shape::shape_, .tiered = true, __VA_ARGS__},
#define PEX_COMPLEX_PLAIN(Name, shape_, ...) \
  pex::Function{.name = #Name, .shape = pex::Shape::shape_, .tiered = false, __VA_ARGS__},
constexpr pex::Function kComplexFunctions[] = {
#include "catalogue/complex_functions.def"
};

constexpr size_t kWidth = 100;

// Wraps at blanks, each line after the first behind `indent`.
std::string Wrap(std::string_view text, const std::string& indent) {
  std::string out;
  size_t column = 0;
  while (!text.empty()) {
    const size_t blank = text.find(' ');
    const std::string_view word = text.substr(0, blank);
    text = blank == std::string_view::npos ? "" : text.substr(blank + 1);
    if (column > 0 && column + 1 + word.size() > kWidth) {
      out += "\n" + indent;
      column = indent.size();
    } else if (column > 0) {
      out += ' ';
      ++column;
    }
    out += word;
    column += word.size();
  }
  return out;
}

std::string Number(double x) {
  char text[32];
  std::snprintf(text, sizeof(text), "%g", x);
  return text;
}

// A bound in ulp of an exact result's parts, or of its modulus.
std::string Ulp(const pex::Function& f, pex::Tier tier, double bound) {
  const bool modulus = f.measures[static_cast<int>(tier)] == pex::Measure::Modulus;
  return Number(bound) + (modulus ? " ulp of the larger part" : " ulp");
}

std::string Bits(const pex::Function& f, double bits) {
  const bool modulus = f.measures[static_cast<int>(pex::Tier::EP)] == pex::Measure::Modulus;
  return "at least " + Number(bits) + " bits" + (modulus ? " of the larger part" : "");
}

std::string Comment(const pex::Function& f) {
  std::string text = "/* " + std::string(f.name) + ": r[i] = " + std::string(f.formula) + ". " +
                     std::string(f.notes);
  if (f.tiered) {
    using pex::Tier;
    text += " Bounds in double: HA " + Ulp(f, Tier::HA, f.d.ha) + ", _50 " +
            Ulp(f, Tier::LA, f.d.la) + ", _26 " + Bits(f, f.d.ep_bits) + "; in single: HA " +
            (f.s.ha == 0.5 ? "correctly rounded" : Ulp(f, Tier::HA, f.s.ha)) + ", _21 " +
            Ulp(f, Tier::LA, f.s.la) + ", _11 " + Bits(f, f.s.ep_bits) + ".";
  }
  return Wrap(text + " */", "   ") + "\n";
}

// What the arrays of arguments and of results hold.
struct Elements {
  std::string argument, result;
};

Elements ElementsOf(const pex::Function& f, char type) {
  const bool is_double = type == 'd' || type == 'z';
  const std::string real = is_double ? "double" : "float";
  const std::string complex = is_double ? "PexComplex16" : "PexComplex8";
  const bool is_complex = type == 'z' || type == 'c';
  return {is_complex && f.shape != pex::Shape::FromReal ? complex : real,
          is_complex && f.shape != pex::Shape::ToReal ? complex : real};
}

// The parameters behind the count.
std::string Parameters(const pex::Function& f, char type) {
  const auto [t, u] = ElementsOf(f, type);
  const std::string in = "const " + t + "* ", out = u + "* ";
  switch (f.shape) {
    case pex::Shape::Unary:
    case pex::Shape::ToReal:
    case pex::Shape::FromReal:
      return in + "a, " + out + "r";
    case pex::Shape::Binary:
      return in + "a, " + in + "b, " + out + "r";
    case pex::Shape::UnaryScalar:
      return in + "a, " + t + " b, " + out + "r";
    case pex::Shape::UnaryTwo:
      return in + "a, " + out + "r1, " + out + "r2";
  }
  return "";
}

std::string Declaration(const pex::Function& f, char type, std::string_view suffix) {
  return Wrap("PEXQUO_API int _pex" + std::string(1, type) + std::string(f.name) +
                  std::string(suffix) + "(int32_t n, " + Parameters(f, type) + ");",
              "    ") +
         "\n";
}

// The public name, with the thread's mode and with one for the call.
std::string FrontDeclarations(const pex::Function& f, std::array<char, 2> types) {
  std::string text = Wrap("/* r[i] = " + std::string(f.formula) + " */", "   ") + "\n";
  for (const char type : types) {
    const std::string start = "PEXQUO_API int32_t v" + std::string(1, type) + std::string(f.name);
    const std::string parameters = "(int64_t n, " + Parameters(f, type);
    text += Wrap(start + parameters + ");", "    ") + "\n";
    text += Wrap(start + "Mode" + parameters + ", uint32_t mode);", "    ") + "\n";
  }
  return text;
}

// In double and single precision, all tiers.
std::string Declarations(const pex::Function& f, std::array<char, 2> types) {
  std::string text;
  for (const char type : types) {
    const bool is_double = type == types[0];
    if (!f.tiered) {
      text += Declaration(f, type, "");
      continue;
    }
    for (const char* suffix : {is_double ? "_26" : "_11", is_double ? "_50" : "_21", "_HA"}) {
      text += Declaration(f, type, suffix);
    }
  }
  return text;
}

std::string Header() {
  std::string text =
      "/* Generated from catalogue/functions.def by catalogue/make_header.cc: change the row, "
      "then\n"
      "   run `cmake --build --preset release --target header`. Included by pexquo/pex.h. */\n"
      "#ifndef PEXQUO_PEX_FUNCTIONS_H_\n#define PEXQUO_PEX_FUNCTIONS_H_\n";
  for (const pex::Function& f : kFunctions) {
    text += "\n" + Comment(f);
    text += Declarations(f, {'d', 's'});
  }
  text +=
      "\n/* ---- Complex functions. Bounds are ulp of each part of a result, or, where it is said, "
      "of its\n   larger part. They report no element and change no status. ---- */\n";
  for (const pex::Function& f : kComplexFunctions) {
    text += "\n" + Comment(f);
    text += Declarations(f, {'z', 'c'});
  }
  text += "\n#endif /* PEXQUO_PEX_FUNCTIONS_H_ */\n";
  return text;
}

std::string FrontHeader() {
  std::string text =
      "/* Generated from catalogue/functions.def and complex_functions.def by "
      "catalogue/make_header.cc:\n"
      "   change the row, then run `cmake --build --preset release --target header`. Included by\n"
      "   pexquo/pexquo.h, which says what all these functions have in common. */\n"
      "#ifndef PEXQUO_FRONT_FUNCTIONS_H_\n#define PEXQUO_FRONT_FUNCTIONS_H_\n\n"
      "/* ---- Real functions: d of doubles, s of floats. ---- */\n";
  for (const pex::Function& f : kFunctions) text += "\n" + FrontDeclarations(f, {'d', 's'});
  text += "\n/* ---- Complex functions: z of doubles, c of floats. ---- */\n";
  for (const pex::Function& f : kComplexFunctions) text += "\n" + FrontDeclarations(f, {'z', 'c'});
  text += "\n#endif /* PEXQUO_FRONT_FUNCTIONS_H_ */\n";
  return text;
}

// The largest errors found, by symbol, from the tables of docs/accuracy.md:
// | `symbol` | bound | largest error | ...
std::map<std::string, std::string> Measured(const std::filesystem::path& file) {
  std::map<std::string, std::string> errors;
  std::ifstream in(file);
  if (!in) throw std::runtime_error("cannot read " + file.string());
  for (std::string line; std::getline(in, line);) {
    std::vector<std::string> cells;
    std::istringstream fields(line);
    for (std::string cell; std::getline(fields, cell, '|');) cells.push_back(cell);
    if (cells.size() < 5 || !cells[1].starts_with(" `_pex")) continue;
    const std::string symbol = cells[1].substr(2, cells[1].rfind('`') - 2);
    const std::string error = cells[3].substr(1, cells[3].size() - 2);
    errors.try_emplace(symbol, error);  // the first table of a function has the largest of all
  }
  return errors;
}

std::string Lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

// One function's section. `types` are those of double and single precision, `measured` the largest
// errors by symbol; without any of the function, its table has no column for them.
std::string Section(const pex::Function& f, std::array<char, 2> types,
                    const std::map<std::string, std::string>& measured, const std::string& title) {
  const std::string name(f.name);
  std::string text =
      "\n## " + title + "\n\nr = " + std::string(f.formula) + ". " + std::string(f.notes) + "\n\n";
  const auto stem = [&](char type) { return "_pex" + std::string(1, type) + name; };
  if (!f.tiered) {
    return text + "- double: `" + stem(types[0]) + "`\n- single: `" + stem(types[1]) + "`\n";
  }
  const bool has_errors = types[0] == 'd' || measured.contains(stem(types[0]) + "_HA");
  text += has_errors ? "| entry | bound | largest error found |\n|---|---|---|\n"
                     : "| entry | bound |\n|---|---|\n";
  for (const char type : types) {
    const bool is_double = type == types[0];
    const pex::Precision& p = is_double ? f.d : f.s;
    const auto row = [&](const std::string& suffix, const std::string& bound) {
      const auto found = measured.find(stem(type) + suffix);
      text += "| `" + stem(type) + suffix + "` | " + bound;
      if (has_errors) text += " | " + (found == measured.end() ? "not measured" : found->second);
      text += " |\n";
    };
    row(is_double ? "_26" : "_11", Bits(f, p.ep_bits));
    row(is_double ? "_50" : "_21", Ulp(f, pex::Tier::LA, p.la));
    row("_HA", p.ha == 0.5 ? "correctly rounded" : Ulp(f, pex::Tier::HA, p.ha));
  }
  return text;
}

// A paragraph with a plot, where there is one.
std::string Plot(const std::filesystem::path& docs, const std::string& file,
                 const std::string& what) {
  return std::filesystem::exists(docs / file) ? "\n![" + what + "](" + file + ")\n" : "";
}

std::string Markdown(const std::filesystem::path& docs) {
  const auto measured = Measured(docs / "accuracy.md");
  std::string text =
      "# Functions\n\nGenerated from `catalogue/functions.def`, `catalogue/complex_functions.def` "
      "and `accuracy.md` by `make_header\n--markdown docs`. Every function takes the count first, "
      "then the argument arrays a (and b), then the results;\nstatus codes are 1 domain, 2 "
      "singularity, 3 overflow, 4 underflow. The bounds are those that the tests hold;\n"
      "`accuracy.md` says where and how the largest errors were found. Complex functions follow "
      "[the real ones](#complex-functions).\n";
  for (const pex::Function& f : kFunctions) {
    const std::string name(f.name);
    text += Section(f, {'d', 's'}, measured, name);
    text += Plot(docs, "accuracy-" + Lower(name) + ".svg",
                 "Error of " + name + " over the typical range");
  }
  text +=
      "\n# Complex functions\n\nComplex numbers are pairs, the real part first. The functions set "
      "no status and report no element. The bounds are\nulp of each part of a result, or, where "
      "it is said, of its larger part; `pexquo_accuracy_complex` measures the\nerrors against MPC. "
      "Branches are principal. On a cut, the sign of the part that is zero says from which side "
      "it is met:\nsqrt(-4 + 0i) = 2i, sqrt(-4 - 0i) = -2i. Special values, signs of zeros among "
      "them, are those of Annex G of the C\nstandard.\n\nOf each elementary function of one "
      "argument there are two plots over a square around 0, made by\n`scripts/complex_plots.sh`. "
      "On "
      "the left the function: the hue is the argument (red 0, green 2 pi/3, blue -2 pi/3), the\n"
      "brightness grows with the modulus from black at 0 to white at infinity, with a step at "
      "every "
      "power of two. On the right\nthe error of the single-precision HA entry, in ulp of the worse "
      "part, against the double-precision entry at the same\nsingle-precision points.\n";
  for (const pex::Function& f : kComplexFunctions) {
    const std::string name(f.name);
    text += Section(f, {'z', 'c'}, measured, "Complex " + name);
    text += Plot(docs, "complex-" + Lower(name) + ".png", "Complex " + name + " and its error");
  }
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::string_view what = argc > 1 ? argv[1] : "";
    const std::string text = what == "--markdown" && argc > 2 ? Markdown(argv[2])
                             : what == "--front"              ? FrontHeader()
                                                              : Header();
    std::fputs(text.c_str(), stdout);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "make_header: %s\n", e.what());
    return 1;
  }
}
