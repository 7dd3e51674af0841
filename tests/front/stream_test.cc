// Streams under their public names: their life, what is refused and leaves everything as it was,
// and statuses in words.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "pexquo/pexquo.h"
#include "tests/front/streams_under_test.h"

namespace {

QuoStream* const kSomething = reinterpret_cast<QuoStream*>(16);

// make(&stream) has to fail with the status and to leave a null pointer.
void ExpectNotMade(int32_t status, const std::function<int32_t(QuoStream**)>& make) {
  QuoStream* stream = kSomething;
  EXPECT_EQ(make(&stream), status);
  EXPECT_EQ(stream, nullptr);
}

TEST(NewStream, IsTheKernelsFromOneSeedAndFromMany) {
  const uint32_t seeds[3] = {1, 2, 3};
  for (const int32_t brng : {0, 276, QUO_BRNG_MCG31M1, QUO_BRNG_R250, QUO_BRNG_MRG32K3A,
                             QUO_BRNG_WH + 272, QUO_BRNG_MT19937, QUO_BRNG_MT2203 + 1023}) {
    SCOPED_TRACE(brng);
    for (const int32_t n : {0, 1, 3}) {
      StreamState* kernel = nullptr;
      QuoStream* front = nullptr;
      ASSERT_EQ(__quoNewStreamEx(&kernel, brng, n, seeds), QUO_OK);
      const OwnedStream expected(kernel);
      EXPECT_EQ(quoNewStreamEx(&front, brng, n, n == 0 ? nullptr : seeds), QUO_OK);
      const OwnedStream stream(front);
      EXPECT_EQ(quoGetStreamBrng(front), brng);
      EXPECT_TRUE(StandAlike(front, kernel));
      if (n == 1) {
        const OwnedStream simple = NewStream(brng, 1), skipped = CopyOf(kernel);
        Next(simple.get(), 10);
        EXPECT_TRUE(StandAlike(simple.get(), skipped.get()));
      }
    }
  }
}

uint32_t ib[4];
double db[4];
float sb[4];
int32_t RefillIWith7(QuoStream*, int32_t*, uint32_t* buffer, int32_t*, int32_t* nmax, int32_t*) {
  std::fill(buffer, buffer + *nmax, 7u);
  return *nmax;
}
int32_t RefillDWithHalf(QuoStream*, int32_t*, double* buffer, int32_t*, int32_t* nmax, int32_t*) {
  std::fill(buffer, buffer + *nmax, 0.5);
  return *nmax;
}
int32_t RefillSWithHalf(QuoStream*, int32_t*, float* buffer, int32_t*, int32_t* nmax, int32_t*) {
  std::fill(buffer, buffer + *nmax, 0.5f);
  return *nmax;
}

TEST(NewStream, RefusesWithAStatusAndANullPointer) {
  const uint32_t seed = 1;
  EXPECT_EQ(quoNewStream(nullptr, QUO_BRNG_MT19937, 1), QUO_NULL_POINTER);
  const auto with = [&](int32_t brng, int64_t n, const uint32_t* params) {
    return [=](QuoStream** stream) { return quoNewStreamEx(stream, brng, n, params); };
  };
  ExpectNotMade(QUO_BAD_COUNT, with(QUO_BRNG_MT19937, -1, &seed));
  ExpectNotMade(QUO_BAD_COUNT, with(QUO_BRNG_MT19937, int64_t{1} << 31, &seed));
  ExpectNotMade(QUO_NULL_ARRAY, with(QUO_BRNG_MT19937, 1, nullptr));
  for (const int32_t brng : {-1, 279, 0xD00000, QUO_BRNG_WH + 273, QUO_BRNG_IABSTRACT}) {
    ExpectNotMade(QUO_INVALID_BRNG, with(brng, 1, &seed));
  }
}

TEST(AbstractStream, DrawsFromTheCallersBuffer) {
  QuoStream* stream = nullptr;
  ASSERT_EQ(quodNewAbstractStream(&stream, 4, db, 0, 1, RefillDWithHalf), QUO_OK);
  EXPECT_EQ(Next(stream, 9), std::vector<double>(9, 0.5));
  uint32_t word = 0;
  EXPECT_EQ(quoiRngUniformBits(0, stream, 1, &word), QUO_WRONG_OUTPUT);
  EXPECT_EQ(quoSkipAheadStream(stream, 1), QUO_SKIPAHEAD_UNSUPPORTED);
  EXPECT_EQ(quoDeleteStream(&stream), QUO_OK);
  ASSERT_EQ(quosNewAbstractStream(&stream, 4, sb, 0, 1, RefillSWithHalf), QUO_OK);
  float r = 0;
  EXPECT_EQ(quosRngUniform(0, stream, 1, &r, 0, 2), QUO_OK);
  EXPECT_EQ(r, 1);
  EXPECT_EQ(quoDeleteStream(&stream), QUO_OK);
  ASSERT_EQ(quoiNewAbstractStream(&stream, 4, ib, RefillIWith7), QUO_OK);
  EXPECT_EQ(quoiRngUniformBits(0, stream, 1, &word), QUO_OK);
  EXPECT_EQ(word, 7u);
  EXPECT_EQ(quoDeleteStream(&stream), QUO_OK);
}

TEST(AbstractStream, RefusesWithAStatusAndANullPointer) {
  const auto i = [](int32_t n, uint32_t* buffer, RefillI refill) {
    return [=](QuoStream** stream) { return quoiNewAbstractStream(stream, n, buffer, refill); };
  };
  const auto d = [](int32_t n, double* buffer, double a, double b, RefillD refill) {
    return [=](QuoStream** s) { return quodNewAbstractStream(s, n, buffer, a, b, refill); };
  };
  const auto s = [](int32_t n, float* buffer, float a, float b, RefillS refill) {
    return [=](QuoStream** s) { return quosNewAbstractStream(s, n, buffer, a, b, refill); };
  };
  EXPECT_EQ(i(4, ib, RefillIWith7)(nullptr), QUO_NULL_POINTER);
  ExpectNotMade(QUO_BAD_COUNT, i(0, ib, RefillIWith7));
  ExpectNotMade(QUO_NULL_ARRAY, i(4, nullptr, RefillIWith7));
  ExpectNotMade(QUO_NULL_FUNCTION, i(4, ib, nullptr));
  ExpectNotMade(QUO_BAD_COUNT, d(-1, db, 0, 1, RefillDWithHalf));
  ExpectNotMade(QUO_NULL_ARRAY, d(4, nullptr, 0, 1, RefillDWithHalf));
  ExpectNotMade(QUO_NULL_FUNCTION, d(4, db, 0, 1, nullptr));
  ExpectNotMade(QUO_NOT_FINITE, d(4, db, 0, NAN, RefillDWithHalf));
  ExpectNotMade(QUO_EMPTY_RANGE, d(4, db, 1, 1, RefillDWithHalf));
  ExpectNotMade(QUO_WIDE_RANGE, d(4, db, -1.5e308, 1.5e308, RefillDWithHalf));
  ExpectNotMade(QUO_NULL_FUNCTION, s(4, sb, 0, 1, nullptr));
  ExpectNotMade(QUO_EMPTY_RANGE, s(4, sb, 1, 0, RefillSWithHalf));
}

// Every call with a stream, by name.
std::map<std::string, std::function<int32_t(QuoStream*)>> CallsWithAStream() {
  static OwnedStream other;
  static QuoStream* made;
  other = NewStream();
  return {
      {"copy", [](QuoStream* s) { return quoCopyStream(&made, s); }},
      {"copy state from", [](QuoStream* s) { return quoCopyStreamState(other.get(), s); }},
      {"copy state to", [](QuoStream* s) { return quoCopyStreamState(s, other.get()); }},
      {"leapfrog", [](QuoStream* s) { return quoLeapfrogStream(s, 0, 2); }},
      {"skip ahead", [](QuoStream* s) { return quoSkipAheadStream(s, 1); }},
      {"save", [](QuoStream* s) { return quoSaveStream(s, "never_written"); }},
      {"brng", [](QuoStream* s) { return quoGetStreamBrng(s); }},
      {"delete", [](QuoStream* s) { return s == nullptr ? QUO_NULL_STREAM : quoDeleteStream(&s); }},
  };
}

TEST(Stream, ThatIsNullOrDamagedIsRefusedByEveryCall) {
  for (const auto& [name, call] : CallsWithAStream()) {
    SCOPED_TRACE(name);
    EXPECT_EQ(call(nullptr), QUO_NULL_STREAM);
    const OwnedStream stream = NewStream(QUO_BRNG_MRG32K3A), same = CopyOf(stream.get());
    stream->header = 0;
    EXPECT_EQ(call(stream.get()), QUO_DEAD_STREAM);
    stream->header = 1;
    stream->id = -5;
    EXPECT_EQ(call(stream.get()), QUO_DEAD_STREAM);
    stream->id = QUO_BRNG_MRG32K3A;
    EXPECT_TRUE(StandAlike(stream.get(), same.get()));
  }
  EXPECT_FALSE(std::ifstream("never_written").good());
}

TEST(Stream, IsDeletedOnceAndThenNull) {
  QuoStream* stream = nullptr;
  ASSERT_EQ(quoNewStream(&stream, QUO_BRNG_R250, 1), QUO_OK);
  EXPECT_EQ(quoDeleteStream(&stream), QUO_OK);
  EXPECT_EQ(stream, nullptr);
  EXPECT_EQ(quoDeleteStream(&stream), QUO_OK);
  EXPECT_EQ(quoDeleteStream(nullptr), QUO_NULL_POINTER);
  double r;
  EXPECT_EQ(quodRngUniform(0, stream, 1, &r, 0, 1), QUO_NULL_STREAM);
}

TEST(CopyStream, GoesOnAsItsSourceAndRefusesOthers) {
  const OwnedStream source = NewStream();
  Next(source.get(), 1000);
  const OwnedStream copy = CopyOf(source.get()), target = NewStream(QUO_BRNG_MT19937, 99);
  EXPECT_EQ(quoCopyStreamState(target.get(), source.get()), QUO_OK);
  const auto expected = Next(source.get(), 5);
  EXPECT_EQ(Next(copy.get(), 5), expected);
  EXPECT_EQ(Next(target.get(), 5), expected);
  ExpectNotMade(QUO_NULL_STREAM, [](QuoStream** s) { return quoCopyStream(s, nullptr); });
  EXPECT_EQ(quoCopyStream(nullptr, source.get()), QUO_NULL_POINTER);
}

TEST(CopyStreamState, BetweenGeneratorsIsRefusedAndChangesNothing) {
  // Another generator, another member; and the same one under the identifiers of both schemes.
  const struct {
    int32_t to, from, status;
  } kPairs[] = {{QUO_BRNG_MCG59, QUO_BRNG_MCG31M1, QUO_DIFFERENT_BRNGS},
                {QUO_BRNG_MT2203 + 1, QUO_BRNG_MT2203 + 2, QUO_DIFFERENT_BRNGS},
                {QUO_BRNG_WH + 1, 4, QUO_DIFFERENT_BRNGS},
                {QUO_BRNG_WH + 1, 5, QUO_OK},
                {2, QUO_BRNG_MRG32K3A, QUO_OK},
                {277, QUO_BRNG_SOBOL, QUO_OK},
                {QUO_BRNG_NIEDERR, 278, QUO_OK},
                {277, QUO_BRNG_NIEDERR, QUO_DIFFERENT_BRNGS},
                {QUO_BRNG_SOBOL, 278, QUO_DIFFERENT_BRNGS}};
  for (const auto& pair : kPairs) {
    SCOPED_TRACE(pair.to);
    const OwnedStream to = NewStream(pair.to, 1), from = NewStream(pair.from, 2);
    const OwnedStream before = CopyOf(pair.status == QUO_OK ? from.get() : to.get());
    EXPECT_EQ(quoCopyStreamState(to.get(), from.get()), pair.status);
    EXPECT_TRUE(StandAlike(to.get(), before.get()));
  }
}

TEST(Leapfrog, DealsTheSequenceOut) {
  const OwnedStream whole = NewStream(QUO_BRNG_MCG31M1);
  const auto expected = Next(whole.get(), 12);
  for (int32_t k = 0; k < 3; ++k) {
    const OwnedStream part = NewStream(QUO_BRNG_MCG31M1);
    EXPECT_EQ(quoLeapfrogStream(part.get(), k, 3), QUO_OK);
    for (size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(Next(part.get(), 1)[0], expected[3 * i + static_cast<size_t>(k)]);
    }
  }
}

TEST(Partition, IsRefusedAndChangesNothing) {
  const OwnedStream stream = NewStream(QUO_BRNG_MCG31M1), same = NewStream(QUO_BRNG_MCG31M1);
  EXPECT_EQ(quoLeapfrogStream(stream.get(), 0, 0), QUO_BAD_STREAM_COUNT);
  EXPECT_EQ(quoLeapfrogStream(stream.get(), 0, -1), QUO_BAD_STREAM_COUNT);
  EXPECT_EQ(quoLeapfrogStream(stream.get(), 3, 3), QUO_BAD_LEAP);
  EXPECT_EQ(quoLeapfrogStream(stream.get(), -1, 3), QUO_BAD_LEAP);
  EXPECT_TRUE(StandAlike(stream.get(), same.get()));
  const OwnedStream r250 = NewStream(QUO_BRNG_R250), same_r250 = NewStream(QUO_BRNG_R250);
  EXPECT_EQ(quoLeapfrogStream(r250.get(), 0, 2), QUO_LEAPFROG_UNSUPPORTED);
  EXPECT_EQ(quoSkipAheadStream(r250.get(), 5), QUO_SKIPAHEAD_UNSUPPORTED);
  EXPECT_TRUE(StandAlike(r250.get(), same_r250.get()));
}

TEST(SkipAhead, GoesToWhereDrawingGoes) {
  const OwnedStream skipped = NewStream(QUO_BRNG_MRG32K3A), drawn = NewStream(QUO_BRNG_MRG32K3A);
  EXPECT_EQ(quoSkipAheadStream(skipped.get(), 1000), QUO_OK);
  Next(drawn.get(), 1000);
  EXPECT_TRUE(StandAlike(skipped.get(), drawn.get()));
  EXPECT_EQ(quoSkipAheadStream(skipped.get(), UINT64_MAX), QUO_OK);
}

TEST(File, HoldsAStreamAndRefusesOthers) {
  const std::string path = testing::TempDir() + "front_stream";
  const OwnedStream stream = NewStream();
  double odd[3];  // leaves half a pair in the stream
  ASSERT_EQ(quodRngGaussian(QUO_METHOD_GAUSSIAN_BOXMULLER2, stream.get(), 3, odd, 0, 1), QUO_OK);
  ASSERT_EQ(quoSaveStream(stream.get(), path.c_str()), QUO_OK);
  QuoStream* loaded = kSomething;
  ASSERT_EQ(quoLoadStream(&loaded, path.c_str()), QUO_OK);
  const OwnedStream owner(loaded);
  for (QuoStream* const s : {stream.get(), loaded}) {
    double r[3];
    ASSERT_EQ(quodRngGaussian(QUO_METHOD_GAUSSIAN_BOXMULLER2, s, 3, r, 0, 1), QUO_OK);
    static double first[3];
    if (s == stream.get()) std::memcpy(first, r, sizeof(r));
    EXPECT_EQ(std::memcmp(first, r, sizeof(r)), 0);
  }

  EXPECT_EQ(quoSaveStream(stream.get(), nullptr), QUO_NULL_POINTER);
  EXPECT_EQ(quoSaveStream(stream.get(), "/no/such/folder/file"), QUO_OPEN_FAILED);
  EXPECT_EQ(quoLoadStream(nullptr, path.c_str()), QUO_NULL_POINTER);
  const auto from = [](const char* name) {
    return [=](QuoStream** made) { return quoLoadStream(made, name); };
  };
  ExpectNotMade(QUO_NULL_POINTER, from(nullptr));
  ExpectNotMade(QUO_OPEN_FAILED, from("/no/such/file"));
  std::ofstream(path) << "RNG";
  ExpectNotMade(QUO_READ_FAILED, from(path.c_str()));
  std::ofstream(path) << std::string(100, 'x');
  ExpectNotMade(QUO_BAD_FILE, from(path.c_str()));
  std::remove(path.c_str());
}

TEST(Registry, AnswersAndTakesGenerators) {
  BrngProperties record;
  EXPECT_EQ(quoGetBrngProperties(QUO_BRNG_WH + 5, &record), QUO_OK);
  EXPECT_EQ(record.WordBytes, 16);
  EXPECT_EQ(quoGetBrngProperties(0x1FF00000, &record), QUO_INVALID_BRNG);
  EXPECT_EQ(quoGetBrngProperties(QUO_BRNG_R250, nullptr), QUO_NULL_POINTER);
  const int32_t rows = quoGetNumBrngs();
  EXPECT_GE(rows, 12);
  EXPECT_EQ(quoRegisterBrng(nullptr), QUO_NULL_POINTER);
  BrngProperties bad = record;
  bad.dBRng = nullptr;
  EXPECT_EQ(quoRegisterBrng(&bad), QUO_NULL_FUNCTION);
  bad.WordBytes = 5;
  EXPECT_EQ(quoRegisterBrng(&bad), QUO_BAD_WORD_SIZE);
  ASSERT_EQ(quoGetBrngProperties(QUO_BRNG_MRG32K3A, &record), QUO_OK);
  const int32_t id = quoRegisterBrng(&record);
  ASSERT_EQ(id, (rows + 1) << 20);
  EXPECT_EQ(quoGetNumBrngs(), rows + 1);
  const OwnedStream own = NewStream(id), built_in = NewStream(QUO_BRNG_MRG32K3A);
  EXPECT_EQ(quoCopyStreamState(own.get(), built_in.get()), QUO_DIFFERENT_BRNGS);
  EXPECT_TRUE(StandAlike(own.get(), built_in.get()));
}

TEST(CopyStreamState, TellsAUsersRowFromALegacyOneOfItsNumber) {
  constexpr int32_t kLegacySobol = 277;
  BrngProperties record;
  ASSERT_EQ(quoGetBrngProperties(QUO_BRNG_MRG32K3A, &record), QUO_OK);
  int32_t id = 0;
  while ((id >> 20) - 1 < kLegacySobol) ASSERT_GT(id = quoRegisterBrng(&record), 0);
  QuoStream* sobol = nullptr;
  if (quoNewStream(&sobol, kLegacySobol, 1) == QUO_INVALID_BRNG)
    GTEST_SKIP() << "no such generator";
  const OwnedStream legacy(sobol), users = NewStream(id);
  EXPECT_EQ(quoCopyStreamState(users.get(), legacy.get()), QUO_DIFFERENT_BRNGS);
  const OwnedStream same = NewStream(id);
  EXPECT_TRUE(StandAlike(users.get(), same.get()));
}

int32_t RefuseToSeed(int32_t, QuoStream*, int32_t, const uint32_t*) { return -77; }

TEST(NewStream, OfAGeneratorThatRefusesIsNotLeftBehind) {
  BrngProperties record;
  ASSERT_EQ(quoGetBrngProperties(QUO_BRNG_MCG59, &record), QUO_OK);
  record.InitStream = RefuseToSeed;
  const int32_t id = quoRegisterBrng(&record);
  ASSERT_GT(id, 0);
  ExpectNotMade(-77, [=](QuoStream** stream) { return quoNewStream(stream, id, 1); });
}

TEST(Threads, HaveTheirOwnModesAndStreams) {
  const double x = 0.7;
  double expected[4];
  _pexdExp_50(1, &x, &expected[PEX_ACCURACY_LA]);
  _pexdExp_HA(1, &x, &expected[PEX_ACCURACY_HA]);
  _pexdExp_26(1, &x, &expected[PEX_ACCURACY_EP]);
  const OwnedStream whole = NewStream(QUO_BRNG_MT2203 + 2);
  const auto numbers = Next(whole.get(), 3000);
  std::vector<std::thread> threads;
  for (uint32_t accuracy : {PEX_ACCURACY_LA, PEX_ACCURACY_HA, PEX_ACCURACY_EP}) {
    threads.emplace_back([&, accuracy] {
      EXPECT_EQ(pexGetMode(), PEX_MODE_DEFAULT);
      pexSetMode(accuracy);
      const OwnedStream stream = NewStream(QUO_BRNG_MT2203 + 2);
      for (int i = 0; i < 3000; ++i) {
        double y = 0;
        vdExp(1, &x, &y);
        ASSERT_EQ(y, expected[accuracy]);
        ASSERT_EQ(Next(stream.get(), 1)[0], numbers[static_cast<size_t>(i)]);
      }
      EXPECT_EQ(vdExp(-1, &x, &expected[0]), PEX_STATUS_BAD_SIZE);
      EXPECT_EQ(pexGetErrStatus(), PEX_STATUS_BAD_SIZE);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(pexGetErrStatus(), PEX_STATUS_OK);
}

// ---- Statuses in words. ----

// The names and numbers of the statuses that a header defines: those that begin as given and are 0,
// negative, or of the few positive ones of vector math.
std::map<std::string, int32_t> Statuses(const char* header, const std::string& prefix) {
  std::map<std::string, int32_t> statuses;
  std::ifstream file(std::string(INCLUDE_FOLDER "/pexquo/") + header);
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string define, name, number;
    if (!(words >> define >> name >> number) || define != "#define" || !name.starts_with(prefix)) {
      continue;
    }
    if (number.starts_with("(-") || prefix == "PEX_STATUS_") {
      statuses[name] = std::stoi(number.starts_with("(") ? number.substr(1) : number);
    }
  }
  return statuses;
}

void ExpectOwnSentences(const std::map<std::string, int32_t>& statuses,
                        const char* (*text)(int32_t)) {
  std::set<std::string> sentences = {text(-987654)};
  std::set<int32_t> numbers;
  for (const auto& [name, status] : statuses) {
    EXPECT_TRUE(numbers.insert(status).second) << name << " has the number of another";
    const std::string sentence = text(status);
    EXPECT_TRUE(sentences.insert(sentence).second) << name << ": " << sentence;
    EXPECT_FALSE(sentence.ends_with(".")) << name;
  }
}

TEST(StatusText, IsASentenceOfItsOwnForEveryStatus) {
  const auto pex = Statuses("pex.h", "PEX_STATUS_");
  EXPECT_EQ(pex.size(), 7u);
  ExpectOwnSentences(pex, pexStatusText);
  auto quo = Statuses("quo.h", "QUO_");
  EXPECT_GE(quo.size(), 22u);
  quo.merge(Statuses("pexquo.h", "QUO_"));
  EXPECT_GE(quo.size(), 41u);
  quo["QUO_OK"] = QUO_OK;
  ExpectOwnSentences(quo, quoStatusText);
  EXPECT_STREQ(pexStatusText(PEX_STATUS_OK), "no error");
}

}  // namespace
