#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace facet {

/// Where a writer's bytes go. Errors are kept: after the first one, further bytes are dropped.
class Output {
 public:
  virtual ~Output() = default;

  void write(std::string_view bytes);
  uint64_t bytesWritten() const { return bytes_; }

  /// What went wrong, empty while all is well.
  const std::string& error() const { return error_; }

 protected:
  /// Returns an empty text, or the reason of a failure.
  virtual std::string writeSome(std::string_view bytes) = 0;
  void fail(std::string reason);

 private:
  uint64_t bytes_ = 0;
  std::string error_;
};

/// From now on a first SIGINT or SIGTERM lets every output fail with "interrupted", so that nothing half
/// written is left behind. endIfInterrupted() then does to the program what the signal would have done.
void stopOnInterruption();
bool isInterrupted();
void endIfInterrupted();

/// Makes the folder that a file is to stand in; what fails there shows when the file is opened.
void makeFolderOf(const std::filesystem::path& file);

/// A file that appears whole or not at all: bytes go to a new file beside `path`, which commit() moves there.
/// Without a commit that file is removed again and what stood under `path` stays. Where `path` names a device
/// or a pipe, bytes go straight to it. A link is followed, and an existing file's permissions are kept. A
/// file that may be written but not replaced (its folder is protected) is filled by commit() from a file
/// elsewhere.
class OutputFile : public Output {
 public:
  explicit OutputFile(const std::filesystem::path& path);
  ~OutputFile() override;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// False when nothing could be opened; error() says why.
  bool isOpen() const { return file_ != nullptr; }

  /// Closes the file, so that commit() only has to move it; false when any byte failed (error() says why).
  bool close();

  /// Closes the file and moves it to its place; false when any byte or the move failed (error() says why).
  bool commit();

 private:
  std::string writeSome(std::string_view bytes) override;
  void openTemporary(const std::filesystem::path& folder);
  void moveIntoPlace();
  void discard();

  std::filesystem::path path_;
  std::filesystem::path temporary_;  // empty when bytes go straight to path_
  std::FILE* file_ = nullptr;
};

/// Bytes kept in memory.
class OutputString : public Output {
 public:
  const std::string& text() const { return text_; }

 private:
  std::string writeSome(std::string_view bytes) override {
    text_ += bytes;
    return {};
  }
  std::string text_;
};

/// Bytes to an open stream that somebody else closes, such as standard output.
class OutputStream : public Output {
 public:
  explicit OutputStream(std::FILE* stream) : stream_(stream) {}

 private:
  std::string writeSome(std::string_view bytes) override;
  std::FILE* stream_;
};

}  // namespace facet
