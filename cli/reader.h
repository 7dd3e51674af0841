// Buffered bytes from a file or standard input.
#ifndef CLI_READER_H_
#define CLI_READER_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Every failure to open or read ends in a Failure that names the file.
class Reader {
 public:
  explicit Reader(const std::string& path);  // "-": standard input
  ~Reader();
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  const std::string& name() const { return name_; }  // the path, or "standard input"
  // The next n bytes without taking them; fewer only at the end. n is at most a few thousand.
  std::string_view Peek(size_t n);
  // Takes n bytes; fewer only at the end. Returns how many.
  size_t Read(void* to, size_t n);
  // Takes a line, without its LF or CRLF; the view holds until the next call. False at the end.
  // A line has at most 1 MiB.
  bool ReadLine(std::string_view* line);

 private:
  bool Fill();  // appends to what the buffer holds; false at the end or when it is full

  std::string name_;
  int fd_;
  std::vector<char> buffer_;
  size_t begin_ = 0, end_ = 0;  // what the buffer holds
  bool at_end_ = false;
};

}  // namespace cli

#endif  // CLI_READER_H_
