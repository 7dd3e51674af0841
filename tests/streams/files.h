// Files for tests of the stream file: bytes in memory, and files that remove themselves.
#ifndef TESTS_STREAMS_FILES_H_
#define TESTS_STREAMS_FILES_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "pexquo/quo.h"

namespace files {

using Bytes = std::vector<unsigned char>;

// A name in the folder for temporary files.
class TemporaryFile {
 public:
  TemporaryFile() {
    static int count = 0;
    path_ = testing::TempDir() + "pexquo_stream_" + std::to_string(getpid()) + "_" +
            std::to_string(count++);
  }
  ~TemporaryFile() { std::remove(path_.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  const char* path() const { return path_.c_str(); }

  void Write(const Bytes& bytes) const {
    FILE* const file = std::fopen(path(), "wb");
    ASSERT_NE(file, nullptr) << path_;
    EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
    EXPECT_EQ(std::fclose(file), 0);
  }
  Bytes Read() const {
    Bytes bytes;
    FILE* const file = std::fopen(path(), "rb");
    if (file == nullptr) return bytes;
    for (int c; (c = std::fgetc(file)) != EOF;) bytes.push_back(static_cast<unsigned char>(c));
    std::fclose(file);
    return bytes;
  }

 private:
  std::string path_;
};

inline Bytes SavedBytes(const StreamState* stream) {
  const TemporaryFile file;
  EXPECT_EQ(__quoSaveStreamF(stream, file.path(), -1), QUO_OK);
  return file.Read();
}

inline uint32_t Number(const Bytes& bytes, size_t at, size_t size) {
  uint32_t n = 0;
  for (size_t i = 0; i < size; ++i) n |= static_cast<uint32_t>(bytes[at + i]) << 8 * i;
  return n;
}

inline void SetNumber(Bytes* bytes, size_t at, size_t size, uint32_t n) {
  for (size_t i = 0; i < size; ++i) (*bytes)[at + i] = static_cast<unsigned char>(n >> 8 * i);
}

}  // namespace files

#endif  // TESTS_STREAMS_FILES_H_
