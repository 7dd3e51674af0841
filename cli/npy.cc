#include "cli/npy.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>

#include "cli/failure.h"
#include "cli/numbers.h"

namespace cli {
namespace {

constexpr size_t kLongestHeader = 1 << 16;
constexpr size_t kMostDimensions = 64;

struct ElementType {
  std::string_view name;
  char kind;
  int width, parts;
};
constexpr ElementType kElementTypes[] = {{"f4", 'f', 4, 1}, {"f8", 'f', 8, 1}, {"i4", 'i', 4, 1},
                                         {"i8", 'i', 8, 1}, {"c8", 'f', 4, 2}, {"c16", 'f', 8, 2}};

// Reads the dictionary from left to right.
struct Dictionary {
  std::string_view rest;
  const std::string& file;

  [[noreturn]] void Damaged() const { Fail(file, ": damaged .npy header"); }
  void SkipBlanks() {
    const size_t first = rest.find_first_not_of(" \t\n");
    rest.remove_prefix(first == std::string_view::npos ? rest.size() : first);
  }
  bool Take(std::string_view token) {
    SkipBlanks();
    if (!rest.starts_with(token)) return false;
    rest.remove_prefix(token.size());
    return true;
  }
  void Expect(std::string_view token) {
    if (!Take(token)) Damaged();
  }
  std::string_view String() {
    SkipBlanks();
    if (rest.empty() || (rest[0] != '\'' && rest[0] != '"')) Damaged();
    const size_t end = rest.find(rest[0], 1);
    if (end == std::string_view::npos) Damaged();
    const std::string_view value = rest.substr(1, end - 1);
    rest.remove_prefix(end + 1);
    return value;
  }
  uint64_t Integer() {
    SkipBlanks();
    uint64_t x = 0;
    const auto result = std::from_chars(rest.data(), rest.data() + rest.size(), x);
    if (result.ec == std::errc::result_out_of_range) Fail(file, ": the array is too large");
    if (result.ec != std::errc()) Damaged();
    rest.remove_prefix(static_cast<size_t>(result.ptr - rest.data()));
    return x;
  }
};

void ReadDescr(Dictionary& d, NpyHeader* h) {
  d.SkipBlanks();
  if (d.rest.starts_with('[')) Fail(d.file, ": an .npy file of records; plain numbers are needed");
  const std::string_view descr = d.String();
  const bool known_order =
      !descr.empty() && std::string_view("<>=").find(descr[0]) != std::string_view::npos;
  const ElementType* const type =
      std::ranges::find(kElementTypes, known_order ? descr.substr(1) : "", &ElementType::name);
  if (type == std::end(kElementTypes)) {
    Fail(d.file, ": .npy elements of type ", Quoted(descr),
         "; f4, f8, i4, i8, c8 and c16 are read");
  }
  h->kind = type->kind;
  h->width = type->width;
  h->parts = type->parts;
  h->big_endian = descr[0] == '>';
}

void ReadShape(Dictionary& d, NpyHeader* h) {
  d.Expect("(");
  while (!d.Take(")")) {
    h->shape.dims.push_back(d.Integer());
    if (h->shape.dims.size() > kMostDimensions) d.Damaged();
    if (d.Take(",")) continue;
    d.Expect(")");
    if (h->shape.dims.size() == 1) d.Damaged();  // (3) is a number, (3,) a shape
    break;
  }
  h->count = 1;
  bool empty = false, overflow = false;
  for (const uint64_t dim : h->shape.dims) {
    empty |= dim == 0;
    overflow |= __builtin_mul_overflow(h->count, dim == 0 ? 1 : dim, &h->count);
  }
  if (empty) h->count = 0;
  if (overflow || h->count > std::numeric_limits<int64_t>::max() / 16) {
    Fail(d.file, ": the array is too large");
  }
}

}  // namespace

NpyHeader ReadNpyHeader(Reader& reader) {
  const auto truncated = [&] { Fail(reader.name(), ": the .npy header is cut short"); };
  unsigned char lead[8], length[4] = {};
  if (reader.Read(lead, sizeof(lead)) != sizeof(lead)) truncated();
  if (std::string_view(reinterpret_cast<char*>(lead), kNpyMagic.size()) != kNpyMagic) {
    Fail(reader.name(), ": not an .npy file");
  }
  const int version = lead[6];
  if (version < 1 || version > 3 || lead[7] != 0) {
    Fail(reader.name(), ": .npy version ", version, ".", int{lead[7]},
         "; 1.0, 2.0 and 3.0 are read");
  }
  const size_t length_bytes = version == 1 ? 2 : 4;
  if (reader.Read(length, length_bytes) != length_bytes) truncated();
  const size_t size = length[0] | length[1] << 8 | length[2] << 16 | size_t{length[3]} << 24;
  if (size > kLongestHeader) Fail(reader.name(), ": damaged .npy header");
  std::string text(size, '\0');
  if (reader.Read(text.data(), size) != size) truncated();

  NpyHeader header;
  Dictionary d{text, reader.name()};
  bool seen_descr = false, seen_order = false, seen_shape = false;
  const auto once = [&](bool* seen) {
    if (*seen) d.Damaged();
    *seen = true;
  };
  d.Expect("{");
  while (!d.Take("}")) {
    const std::string_view key = d.String();
    d.Expect(":");
    if (key == "descr") {
      once(&seen_descr);
      ReadDescr(d, &header);
    } else if (key == "fortran_order") {
      once(&seen_order);
      header.shape.fortran_order = d.Take("True");
      if (!header.shape.fortran_order) d.Expect("False");
    } else if (key == "shape") {
      once(&seen_shape);
      ReadShape(d, &header);
    } else {
      d.Damaged();
    }
    if (d.Take(",")) continue;
    d.Expect("}");
    break;
  }
  d.SkipBlanks();
  if (!d.rest.empty() || !seen_descr || !seen_order || !seen_shape) d.Damaged();
  return header;
}

std::string NpyHeaderBytes(std::string_view descr, const NpyShape& shape) {
  std::string text = "{'descr': '" + std::string(descr) +
                     "', 'fortran_order': " + (shape.fortran_order ? "True" : "False") +
                     ", 'shape': (";
  for (const uint64_t dim : shape.dims) text += std::to_string(dim) + ", ";
  if (shape.dims.size() > 1) text.resize(text.size() - 2);
  if (shape.dims.size() == 1) text.pop_back();
  text += "), }";
  constexpr size_t kLead = 10, kBlock = 64;
  const size_t digits = shape.dims.empty() ? 0 : 20 - std::to_string(shape.dims[0]).size();
  const size_t total = (kLead + text.size() + digits + 1 + kBlock - 1) / kBlock * kBlock;
  text.append(total - kLead - text.size() - 1, ' ');
  text += '\n';
  std::string bytes(kNpyMagic);
  bytes += {'\1', '\0', static_cast<char>(text.size() & 0xFF), static_cast<char>(text.size() >> 8)};
  return bytes + text;
}

}  // namespace cli
