// pexquo: evaluates functions and draws random numbers from a shell.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "CLI/CLI.hpp"
#include "catalogue/catalogue.h"
#include "cli/commands.h"
#include "cli/failure.h"
#include "cli/level.h"
#include "cli/names.h"
#include "cli/numbers.h"

namespace cli {
namespace {

constexpr char kAbout[] =
    "Vector math and random streams with the same bits on every x86-64 processor.\n"
    "Exit status: 0; 1 when eval met special elements (the results are written); 2 for bad input\n"
    "or a failed write, with one line on standard error.";

// Options that every command has.
void AddLevel(CLI::App* command, std::string* level) {
  command->add_option("--level", *level,
                      "Highest vector level: sse4, avx2 or avx512 (the results stay the same)");
}

void AddOutput(CLI::App* command, std::string* output, std::string* format, const char* formats) {
  command->add_option("-o,--output", *output, "File to write, - for standard output")
      ->capture_default_str();
  command->add_option("--format", *format,
                      std::string(formats) + "; npy for a file named so, else text");
}

void AddEval(CLI::App* command, EvalOptions* o) {
  command->add_option("function", o->function, "A function, see pexquo list functions")->required();
  command
      ->add_option("file", o->input,
                   "Numbers: .npy, or text with one a line (complex: two); - for standard input")
      ->capture_default_str();
  command->add_option("--tier", o->tier, "ha (at most 1 ulp, the default), la or ep (fast)");
  command->add_option(
      "--type", o->type,
      "d or s: double or single precision; z or c: the same, complex; the type of an .npy "
      "array, else d, if not given");
  command->add_option(
      "--column", o->text.column,
      "Column of separated values: its name, or its number from 1 (complex: RE,IM)");
  command->add_option("--delimiter", o->text.delimiter, "One character, tab or space")
      ->capture_default_str();
  auto* with = command->add_option("second,--with", o->with, "File of second arguments");
  command->add_option("--with-column", o->with_column, "Its column, when not the same")
      ->needs(with);
  command
      ->add_option("--b,--with-value", o->with_value,
                   "One second argument for all (complex: RE,IM)")
      ->excludes(with);
  command->add_option("--max-reports", o->max_reports,
                      "Special elements to show; the others are counted");
  AddOutput(command, &o->output, &o->format, "text or npy");
  command->footer(
      "Examples:\n"
      "  pexquo eval ln --tier ha prices.txt\n"
      "  pexquo eval exp trades.csv --column change --type s -o growth.npy\n"
      "  pexquo eval sub trades.csv --column ask --with trades.csv --with-column bid\n"
      "  pexquo eval atan2 y.npy x.npy\n"
      "  pexquo eval powx --b 0.5 areas.txt\n"
      "  pexquo eval abs spectrum.csv --type z --column re,im");
}

void AddDraw(CLI::App* command, DrawOptions* o) {
  command
      ->add_option("distribution", o->distribution,
                   "See pexquo list distributions; sobol and niederr: uniform points")
      ->required();
  command->add_option(
      "--generator", o->generator,
      "Name, name:member or identifier, see pexquo list generators; mcg59 if not given");
  command->add_option("--member", o->member, "Member of a family of generators");
  command->add_option("--seed", o->seeds,
                      "Seed words of 32 bits, by blanks or commas; 1 if not given");
  command->add_option(
      "--dimension", o->dimension,
      "Coordinates of a point of sobol or niederr, one point a row; 1 if not given");
  command->add_option("--count", o->count, "How many numbers, or points, such as 1000 or 1e9")
      ->required();
  std::map<std::string, std::string> help;  // of each parameter, by its distributions
  for (const quo::Distribution& d : quo::Distributions()) {
    for (const quo::Parameter& p : d.parameters) {
      if (p.name.empty()) continue;
      std::string& text = help[std::string(p.name)];
      text += (text.empty() ? "" : ", ") + std::string(d.name) + ": " + std::string(p.what);
    }
  }
  for (const auto& [name, text] : help) {
    command->add_option("--" + name, o->parameters[name], "Parameter (" + text + ")");
  }
  command->add_option("--mean", o->mean,
                      "Mean vector of gaussianmv, the means of poissonv, by commas");
  command->add_option("--factor", o->factor, "Lower triangular factor T of its covariance T T'");
  command->add_option("--storage", o->storage,
                      "of --factor: full by rows (the default), packed by columns, or diagonal");
  command->add_option("--method", o->method,
                      "gaussian, gaussianmv: boxmuller, boxmuller2 or icdf (the default); poisson: "
                      "ptpe (the default) or normal");
  command->add_option("--type", o->type, "d, s or i: double (the default), single, 32-bit integer");
  command->add_flag("--accurate", o->accurate, "Keep every number within the bounds");
  command->add_option("--leapfrog", o->leapfrog,
                      "K/S: every S-th output of the generator from the K-th on");
  command->add_option("--skip", o->skip,
                      "Outputs of the generator, or points, to pass over (after --leapfrog)");
  command->add_option("--save", o->save, "File for the stream's state after the last number");
  command->add_option("--load", o->load, "Saved state to go on from, instead of a new stream");
  AddOutput(command, &o->output, &o->format, "text, npy or raw (little-endian)");
  command->footer(
      "Examples:\n"
      "  pexquo draw uniform --generator mcg59 --seed 42 --count 1e6 --a -1 --b 1 -o u.npy\n"
      "  pexquo draw uniform --type i --a 1 --b 7 --count 10 --seed 2026\n"
      "  pexquo draw uniformbits --generator wh:17 --count 1e12 --format raw | battery\n"
      "  pexquo draw gaussian --generator mt19937 --a 10 --sigma 2 --count 1e6 --save s.quo\n"
      "  pexquo draw gaussian --load s.quo --a 10 --sigma 2 --count 1e6\n"
      "  pexquo draw gaussianmv --mean 0,1 --factor 1,0,0.5,2 --count 5\n"
      "  pexquo draw sobol --dimension 8 --count 1024 -o points.npy");
}

// An empty value is a variable that a script has not set; taken for an option that is not given, it
// would quietly lead to other numbers.
void RefuseEmptyValues(CLI::App* command) {
  for (CLI::Option* option : command->get_options()) {
    if (option->get_items_expected_max() == 0) continue;
    option->check([](const std::string& value) { return value.empty() ? "is empty" : ""; });
  }
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands(nullptr)) names.push_back(command->get_name());
  return names;
}

// Whether an argument can only be one more seed word.
bool IsSeedWord(const std::string& argument) {
  const size_t sign = argument.starts_with('-') ? 1 : 0;
  return argument.size() > sign && argument[sign] >= '0' && argument[sign] <= '9';
}

// The arguments in the order of the command line, with "--seed 1 2 3" as "--seed 1,2,3": the list
// of words ends where something else begins, be it the distribution.
std::vector<std::string> JoinedArguments(int argc, char** argv) {
  std::vector<std::string> arguments;
  for (int i = 1; i < argc; ++i) {
    arguments.emplace_back(argv[i]);
    if (arguments.back() != "--seed" || i + 1 == argc) continue;
    arguments.emplace_back(argv[++i]);
    while (i + 1 < argc && IsSeedWord(argv[i + 1])) {
      arguments.back() += std::string(",") + argv[++i];
    }
  }
  return arguments;
}

// One line for what the parser refused.
[[noreturn]] void FailParse(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> extras = app.remaining(true);
  if (!extras.empty()) {
    std::vector<std::string> known;
    for (const CLI::App* command : app.get_subcommands()) {
      for (const CLI::Option* option : command->get_options()) {
        for (const std::string& name : option->get_lnames()) known.push_back("--" + name);
      }
    }
    const std::string name = extras.front().substr(0, extras.front().find('='));
    if (std::find(known.begin(), known.end(), name) != known.end()) {
      Fail("unexpected ", Quoted(extras.front()), "; options come after the command");
    }
    const bool option = extras.front().starts_with("-");
    Fail("unexpected ", Quoted(extras.front()), option ? Suggestion(extras.front(), known) : "");
  }
  std::string text = error.what();
  // The parser's own words for how often an option and its value are there.
  const std::string option = text.substr(0, text.find(':'));
  if (text.find("At Most 1 required but received") != std::string::npos) {
    Fail(option, " is given more than once");
  }
  if (text.find("1 required TEXT missing") != std::string::npos) Fail(option, " needs a value");
  if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr) {
    Fail("the second argument is given twice: as a file and by --b");
  }
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  Fail(text);
}

// Descriptors that the caller has closed are given away again to the first files opened, which
// would then be read for standard input, or take messages. They stand for files that fail instead.
void OccupyStandardDescriptors() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(fd, F_GETFD) >= 0 || errno != EBADF) continue;
    const int flags = fd == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (open("/dev/null", flags) != fd) std::exit(kStatusFailed);  // the lowest free one
  }
}

int Run(int argc, char** argv) {
  CLI::App app(kAbout, "pexquo");
  app.set_version_flag("--version", "pexquo " PEXQUO_VERSION);
  app.require_subcommand(1);
  std::string level, topic;
  EvalOptions eval;
  DrawOptions draw;
  CLI::App* const list_command = app.add_subcommand("list", "What there is, and the vector level");
  list_command->add_option("topic", topic, "functions, generators, distributions or levels");
  CLI::App* const eval_command = app.add_subcommand("eval", "Applies a function to numbers");
  AddEval(eval_command, &eval);
  CLI::App* const draw_command = app.add_subcommand("draw", "Draws random numbers");
  AddDraw(draw_command, &draw);
  for (CLI::App* command : {list_command, eval_command, draw_command}) {
    AddLevel(command, &level);
    RefuseEmptyValues(command);
  }

  if (argc < 2) Fail("no command; pexquo --help shows what there is");
  const std::vector<std::string> commands = CommandNames(app);
  const std::string first = argv[1];
  if (!first.starts_with('-') && std::ranges::find(commands, first) == commands.end()) {
    Fail("unknown command ", Quoted(first),
         Suggestion(first, commands, "; the commands are " + Enumeration(commands)));
  }
  try {
    std::vector<std::string> arguments = JoinedArguments(argc, argv);
    std::ranges::reverse(arguments);  // the parser takes them from the back
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help, --version
      app.exit(error);
      return FinishPrinting();
    }
    FailParse(app, error);
  }
  if (!level.empty()) UseLevel(level);
  if (list_command->parsed()) return List(topic);
  if (eval_command->parsed()) return Eval(eval);
  return Draw(draw);
}

}  // namespace
}  // namespace cli

int main(int argc, char** argv) {
  // A closed pipe and a full quota are met where they are written to.
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
  cli::OccupyStandardDescriptors();
  try {
    return cli::Run(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fputs("pexquo: not enough memory\n", stderr);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "pexquo: %s\n", failure.what());
  }
  return cli::kStatusFailed;
}
