// The search of the members of MT2203: twist words with an irreducible characteristic polynomial,
// and tempering masks that make the words almost as equidistributed as the recurrence allows.
#ifndef GEN_MT2203_SEARCH_H_
#define GEN_MT2203_SEARCH_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

#include "gen/mt2203_lattice.h"

namespace quo::mt2203 {

inline constexpr int kMembers = 1024;
inline constexpr size_t kBeam = 60;
// The given rows have 699 to 711; of the twist words about a half lead to masks with at most 710.
inline constexpr int kMostDefects = 710;

// Masks of which only the bits up to some level, and these of b, are decided.
struct Choice {
  Masks masks;
  uint32_t decided;
};

// The ways to go on with bit `level`.
inline std::vector<Choice> Choices(int level, const Choice& so_far) {
  auto bit = [](int i) { return uint32_t{1} << (31 - i); };
  std::vector<Choice> choices = {so_far};
  if (level < 17) {
    choices.push_back(so_far);
    choices[1].masks.c |= bit(level);
  }
  // Both values of bit i of b, where c has these bits.
  auto fork = [&](int i, uint32_t c) {
    for (size_t n = choices.size(); n-- > 0;) {
      if ((choices[n].masks.c & c) != c || (choices[n].decided & bit(i))) continue;
      choices[n].decided |= bit(i);
      choices.push_back(choices[n]);
      choices.back().masks.b |= bit(i);
    }
  };
  if (level < 25) fork(level, 0);
  if (level < 10) fork(level + 15, bit(level));
  return choices;
}

template <class T>
struct Node {
  Choice choice;
  int defects;
  Tempered<T> tempered;
};

// The kBeam best nodes with one bit more.
template <class T>
std::vector<Node<T>> Step(const std::vector<Node<T>>& beam) {
  struct Candidate {
    int defects, longest;
    size_t order, parent;
    Choice choice;
  };
  std::vector<Candidate> candidates;
  for (size_t parent = 0; parent < beam.size(); ++parent) {
    const auto& [so_far, defects, tempered] = beam[parent];
    const int level = tempered.level();
    for (const Choice& choice : Choices(level, so_far)) {
      const Lattice<T> lattice = tempered.Extended(choice.masks);
      candidates.push_back({defects + Defect(level + 1, lattice.ShortestDegree()),
                            lattice.LongestDegree(), candidates.size(), parent, choice});
    }
  }
  std::sort(candidates.begin(), candidates.end(), [](const auto& x, const auto& y) {
    return std::tie(x.defects, x.longest, x.order) < std::tie(y.defects, y.longest, y.order);
  });
  candidates.resize(std::min(candidates.size(), kBeam));
  std::vector<Node<T>> next;
  for (const Candidate& candidate : candidates) {
    next.push_back({candidate.choice, candidate.defects, beam[candidate.parent].tempered});
    next.back().tempered.Extend(candidate.choice.masks);
  }
  return next;
}

struct Found {
  Masks masks;
  int defects;
};

// Masks for the twist word a, bit by bit (M. Matsumoto and T. Nishimura, "Dynamic creation of
// pseudorandom number generators", 2000), keeping at each bit the kBeam choices with the least
// defects so far; k(1) and k(2) have none.
inline std::optional<Found> SearchMasks(uint32_t a) {
  const Twister twister = MakeTwister(a);
  const Modulus modulus(twister.characteristic);
  std::vector<Node<uint16_t>> beam;
  for (const Choice& choice : Choices(0, {})) {
    beam.push_back({choice, 0, Tempered<uint16_t>(twister, modulus, choice.masks)});
  }
  beam = Step(beam);
  std::erase_if(beam, [](const auto& node) { return node.defects > 0; });
  if (beam.empty()) return std::nullopt;
  while (beam[0].tempered.level() < 16) beam = Step(beam);
  std::vector<Node<uint32_t>> wide;
  for (const auto& [choice, defects, tempered] : beam) {
    wide.push_back({choice, defects, Tempered<uint32_t>(tempered)});
  }
  while (wide[0].tempered.level() < 32) wide = Step(wide);
  return Found{wide[0].choice.masks, wide[0].defects};
}

struct Member {
  uint32_t a, b, c;
  bool operator==(const Member&) const = default;
};

// The rows that are given.
inline std::optional<Member> Given(int member) {
  switch (member) {
    case 0:
      return Member{0xAF81055F, 0xDD7EEF80, 0xEFD78000};
    case 1:
      return Member{0x832604E1, 0x66AD7F80, 0xEBD58000};
    case 2:
      return Member{0x92F70739, 0x656D7780, 0xEFC50000};
    case 511:
      return Member{0xFDEE01FF, 0x8AB47780, 0xEFD70000};
    case 1023:
      return Member{0xE1B6093F, 0x9D326E80, 0xEFD58000};
    default:
      return std::nullopt;
  }
}

// The low 16 bits of the twist word, odd, below 4096 and different for all members.
inline uint32_t Identifier(int member) {
  if (const auto given = Given(member)) return given->a & 0xFFFF;
  const uint32_t id = 2 * static_cast<uint32_t>(member) + 1;
  for (int taken : {0, 1, 2, 511, 1023}) {
    if (id == Identifier(taken)) return id + 2048;
  }
  return id;
}

// The row of a member, from its number alone: the twist words with its identifier and the top bit
// set are tried in a scattered order until one has masks as good as asked.
inline Member FindMember(int member) {
  if (const auto given = Given(member)) return *given;
  const uint32_t id = Identifier(member);
  uint64_t hash = id * 0x9E3779B97F4A7C15;
  hash = (hash ^ hash >> 30) * 0xBF58476D1CE4E5B9;
  hash = (hash ^ hash >> 27) * 0x94D049BB133111EB;
  const uint32_t start = hash >> 48, step = hash >> 32 | 1;
  Member best = {};
  int least = 1 << 20;
  for (uint32_t i = 0; i < 0x8000 && least > kMostDefects; ++i) {
    const uint32_t a = (0x8000 | ((start + i * step) & 0x7FFF)) << 16 | id;
    if (!IsIrreducible(MakeTwister(a).characteristic)) continue;
    const auto found = SearchMasks(a);
    if (!found || found->defects >= least) continue;
    least = found->defects;
    best = {a, found->masks.b, found->masks.c};
  }
  return best;
}

}  // namespace quo::mt2203

#endif  // GEN_MT2203_SEARCH_H_
