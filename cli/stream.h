// A random stream as the command line describes one.
#ifndef CLI_STREAM_H_
#define CLI_STREAM_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pexquo/quo.h"

namespace cli {

struct DeleteStream {
  void operator()(StreamState* stream) const { __quoDeleteStream(&stream); }
};

struct Stream {
  std::unique_ptr<StreamState, DeleteStream> state;
  BrngProperties properties{};
  std::string generator;  // for messages
};

// The identifier of a generator: a name of the catalogue, with ":member" for one of a family, or a
// number of either scheme. `member` chooses the member too; empty for none.
int32_t GeneratorId(const std::string& generator, const std::string& member);
// Seed words of 32 bits, separated by commas or blanks, in the order the generator takes them; none
// for "".
std::vector<uint32_t> SeedWords(const std::string& words);
// The seed word of a quasi-random generator for points of so many coordinates.
uint32_t DimensionWord(const std::string& text, int32_t id, const std::string& generator);
// The coordinates of a point that a quasi-random stream delivers; 0 of any other stream.
uint32_t DimensionOf(const Stream& stream);
Stream OpenStream(int32_t id, const std::string& generator, const std::vector<uint32_t>& seeds);
// A stream as SaveStream wrote it.
Stream LoadStream(const std::string& path);
// Fails where SaveStream could not write, before anything is drawn.
void ExpectSavePlace(const std::string& path);
// Writes the stream's state to a file, which appears complete or not at all.
void SaveStream(const Stream& stream, const std::string& path);
// Keeps every s-th number from the k-th on, by "k/s", k counted from 0.
void Leapfrog(Stream& stream, const std::string& k_of_s);
// Passes over a count of numbers, of quasi-random ones of points.
void SkipAhead(Stream& stream, const std::string& count);
// Ends in a Failure unless `status` is 0.
void Expect(int32_t status, const Stream& stream, const std::string& what);

}  // namespace cli

#endif  // CLI_STREAM_H_
