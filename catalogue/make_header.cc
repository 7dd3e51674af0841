// Writes include/pexquo/pex_functions.h, the declarations of the catalogued functions, to standard
// output, or with --markdown docs/functions.md. It reads the rows alone, so that it runs before the
// library exists.
#include <cstdio>
#include <string>
#include <string_view>

#include "catalogue/catalogue.h"

namespace {

#define PEX_TIERED(Name, shape_, ...) \
  pex::Function{.name = #Name, .shape = pex::Shape::shape_, .tiered = true, __VA_ARGS__},
#define PEX_PLAIN(Name, shape_, ...) \
  pex::Function{.name = #Name, .shape = pex::Shape::shape_, .tiered = false, __VA_ARGS__},
constexpr pex::Function kFunctions[] = {
#include "catalogue/functions.def"
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

std::string Comment(const pex::Function& f) {
  std::string text = "/* " + std::string(f.name) + ": r[i] = " + std::string(f.formula) + ". " +
                     std::string(f.notes);
  if (f.tiered) {
    text += " Bounds in double: HA " + Number(f.d.ha) + " ulp, _50 " + Number(f.d.la) +
            " ulp, _26 at least " + Number(f.d.ep_bits) + " bits; in single: HA " +
            (f.s.ha == 0.5 ? "correctly rounded" : Number(f.s.ha) + " ulp") + ", _21 " +
            Number(f.s.la) + " ulp, _11 at least " + Number(f.s.ep_bits) + " bits.";
  }
  return Wrap(text + " */", "   ") + "\n";
}

std::string Declaration(const pex::Function& f, char type, std::string_view suffix) {
  const std::string t = type == 'd' ? "double" : "float";
  const std::string in = "const " + t + "* ", out = t + "* ";
  std::string arguments;
  switch (f.shape) {
    case pex::Shape::Unary:
      arguments = in + "a, " + out + "r";
      break;
    case pex::Shape::Binary:
      arguments = in + "a, " + in + "b, " + out + "r";
      break;
    case pex::Shape::UnaryScalar:
      arguments = in + "a, " + t + " b, " + out + "r";
      break;
    case pex::Shape::UnaryTwo:
      arguments = in + "a, " + out + "r1, " + out + "r2";
      break;
  }
  return Wrap("PEXQUO_API int _pex" + std::string(1, type) + std::string(f.name) +
                  std::string(suffix) + "(int32_t n, " + arguments + ");",
              "    ") +
         "\n";
}

std::string Header() {
  std::string text =
      "/* Generated from catalogue/functions.def by catalogue/make_header.cc: change the row, "
      "then\n"
      "   run `cmake --build --preset release --target header`. Included by pexquo/pex.h. */\n"
      "#ifndef PEXQUO_PEX_FUNCTIONS_H_\n#define PEXQUO_PEX_FUNCTIONS_H_\n";
  for (const pex::Function& f : kFunctions) {
    text += "\n" + Comment(f);
    for (const char type : {'d', 's'}) {
      if (!f.tiered) {
        text += Declaration(f, type, "");
        continue;
      }
      for (const char* suffix : {type == 'd' ? "_26" : "_11", type == 'd' ? "_50" : "_21", "_HA"}) {
        text += Declaration(f, type, suffix);
      }
    }
  }
  text += "\n#endif /* PEXQUO_PEX_FUNCTIONS_H_ */\n";
  return text;
}

std::string Entries(const pex::Function& f, char type) {
  const std::string stem = "`_pex" + std::string(1, type) + std::string(f.name);
  if (!f.tiered) return stem + "`";
  return stem + (type == 'd' ? "_26`, `_50`, `_HA`" : "_11`, `_21`, `_HA`");
}

std::string Bounds(const pex::Precision& p) {
  return "at least " + Number(p.ep_bits) + " bits, " + Number(p.la) + " ulp, " +
         (p.ha == 0.5 ? "correctly rounded" : Number(p.ha) + " ulp");
}

std::string Markdown() {
  std::string text =
      "# Functions\n\nGenerated from `catalogue/functions.def` by `make_header --markdown`. Every "
      "function takes the count first,\nthen the argument arrays a (and b), then the results; "
      "status "
      "codes are 1 domain, 2 singularity, 3 overflow,\n4 underflow. The bounds are those that the "
      "tests hold; `docs/accuracy.md` has what was measured.\n";
  for (const pex::Function& f : kFunctions) {
    text += "\n## " + std::string(f.name) + "\n\nr = " + std::string(f.formula) + ". " +
            std::string(f.notes) + "\n\n";
    for (const char type : {'d', 's'}) {
      text += std::string(type == 'd' ? "- double: " : "- single: ") + Entries(f, type);
      if (f.tiered) text += ": " + Bounds(type == 'd' ? f.d : f.s);
      text += "\n";
    }
  }
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  const bool markdown = argc > 1 && std::string_view(argv[1]) == "--markdown";
  std::fputs((markdown ? Markdown() : Header()).c_str(), stdout);
}
