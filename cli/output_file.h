// A file that appears under its name only when it is whole.
#ifndef CLI_OUTPUT_FILE_H_
#define CLI_OUTPUT_FILE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Bytes go to a temporary file in the directory of the target, which Commit renames; without a
// Commit, and when a signal ends the program, the temporary file is removed and whatever stood
// under the name stays. Standard output ("-") and what is no regular file (a pipe, a device) are
// written directly. Every failed operation ends in a Failure, a reader that has gone in ClosedPipe.
// There is at most one OutputFile at a time.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Holds everything back in an unnamed temporary file until Commit where the bytes would go out
  // directly, so that ReplaceStart works. To be called before the first Write.
  void HoldBack();
  void Write(const void* bytes, size_t n);
  // Overwrites the first bytes.
  void ReplaceStart(std::string_view bytes);
  void Commit();

  // Where the bytes are until Commit, for who writes them himself, under that name.
  std::string place() const;

  bool is_terminal() const;
  const std::string& name() const { return name_; }  // the path, or "standard output"

 private:
  void Flush();
  void WriteOut(int fd, const char* bytes, size_t n);
  [[noreturn]] void FailWith(int error) const;

  std::string name_;    // for messages
  std::string target_;  // final name, empty where bytes go out directly
  int fd_ = -1;
  int held_ = -1;  // where HoldBack holds the bytes
  std::vector<char> buffer_;
};

}  // namespace cli

#endif  // CLI_OUTPUT_FILE_H_
