#include <algorithm>
#include <cstdio>
#include <map>

#include "catalogue/catalogue.h"
#include "cli/commands.h"
#include "cli/failure.h"
#include "cli/level.h"
#include "cli/names.h"
#include "cli/numbers.h"

namespace cli {
namespace {

void Add(std::string* list, std::string_view word) {
  if (list->find(word) != std::string::npos) return;
  if (!list->empty()) *list += ' ';
  *list += word;
}

void Print(const std::string& line) { std::fputs((line + "\n").c_str(), stdout); }

std::string Padded(std::string text, size_t width) {
  text.resize(std::max(text.size() + 1, width), ' ');
  return text;
}

void ListFunctions() {
  struct Row {
    std::string tiers, types;
  };
  std::map<const pex::Function*, Row> rows;
  for (const auto& entries : {pex::Entries(), pex::ComplexEntries()}) {
    for (const pex::Entry& e : entries) {
      Row& row = rows[e.function];
      Add(&row.tiers, e.tier == pex::Tier::Plain ? "-" : pex::TierName(e.tier));
      Add(&row.types, std::string_view(&e.type, 1));
    }
  }
  Print(Padded("function", 12) + Padded("tiers", 10) + Padded("types", 7) +
        "result (a: argument, b: second argument); z and c are complex, double and single");
  for (const auto& functions : {pex::Functions(), pex::ComplexFunctions()}) {
    for (const pex::Function& f : functions) {
      const Row& row = rows[&f];
      Print(Padded(Normalized(f.name), 12) + Padded(row.tiers, 10) + Padded(row.types, 7) +
            std::string(f.formula));
    }
  }
}

void ListGenerators() {
  Print(Padded("generator", 12) + Padded("identifier", 12) + Padded("members", 9) + "what it is");
  for (const quo::Generator& g : quo::Generators()) {
    char id[16];
    std::snprintf(id, sizeof(id), "0x%X", static_cast<unsigned>(g.id));
    Print(Padded(Normalized(g.name), 12) + Padded(id, 12) + Padded(std::to_string(g.members), 9) +
          std::string(g.what));
  }
}

void ListDistributions() {
  Print(Padded("distribution", 16) + Padded("types", 7) + Padded("parameters", 35) + "what it is");
  for (const quo::Distribution& d : quo::Distributions()) {
    std::string types, parameters;
    for (const quo::Sampler& s : quo::Samplers()) {
      if (s.distribution == &d && s.type != 'w') Add(&types, std::string_view(&s.type, 1));
    }
    for (const quo::Parameter& p : d.parameters) {
      if (p.name.empty()) continue;
      parameters += (parameters.empty() ? "" : " ") + std::string(p.name);
      parameters += "=" + NumberText(p.standard);
    }
    if (d.name == "gaussianmv") types = "d s", parameters = "mean factor storage=full";
    Print(Padded(std::string(d.name), 16) + Padded(types, 7) + Padded(parameters, 35) +
          std::string(d.what));
  }
}

void ListLevels() {
  Print(Padded("level", 8) + Padded("vectors", 10) + "on this processor");
  for (const Level& level : Levels()) {
    Print(Padded(std::string(level.name), 8) + Padded(std::string(level.what), 10) +
          (!level.available             ? "no"
           : level.name == LevelInUse() ? "yes, in use"
                                        : "yes"));
  }
}

struct Topic {
  std::string name;
  void (*print)();
};

}  // namespace

int List(const std::string& topic) {
  const Topic topics[] = {{"functions", ListFunctions},
                          {"generators", ListGenerators},
                          {"distributions", ListDistributions},
                          {"levels", ListLevels}};
  std::vector<std::string> known;
  bool printed = false;
  for (const Topic& t : topics) {
    known.push_back(t.name);
    if (!topic.empty() && topic != t.name) continue;
    if (printed) Print("");
    t.print();
    printed = true;
  }
  if (!printed)
    Fail("nothing to list under ", Quoted(topic),
         Suggestion(topic, known, "; the topics are " + Enumeration(known)));
  return FinishPrinting();
}

int FinishPrinting() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    Fail("standard output: the text could not be written");
  }
  return kStatusOk;
}

}  // namespace cli
