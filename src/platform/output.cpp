#include "platform/output.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <random>
#include <utility>

namespace facet {

namespace fs = std::filesystem;

namespace {

std::string lastError() {
  return std::strerror(errno);
}

/// What stands under the path once links are followed; a dangling link gives its own target.
fs::path resolveLinks(const fs::path& path) {
  std::error_code error;
  fs::path resolved = fs::weakly_canonical(path, error);
  return error ? path : resolved;
}

/// A file that is protected stays, although its folder would let it be replaced.
bool mayWrite(const fs::path& existing) {
  std::FILE* file = std::fopen(existing.string().c_str(), "r+b");
  return file != nullptr && std::fclose(file) == 0;
}

/// A name beside `path` that no other writer uses.
fs::path temporaryBeside(const fs::path& path) {
  static std::atomic<uint32_t> counter = std::random_device{}();
  return path.parent_path() / ("." + path.filename().string().substr(0, 200) + "." +
                               std::to_string(std::random_device{}()) + std::to_string(counter++) + ".part");
}

}  // namespace

void Output::write(std::string_view bytes) {
  if (!error_.empty()) return;
  std::string reason = writeSome(bytes);
  if (reason.empty())
    bytes_ += bytes.size();
  else
    fail(std::move(reason));
}

void Output::fail(std::string reason) {
  if (error_.empty()) error_ = std::move(reason);
}

OutputFile::OutputFile(const fs::path& path) : path_(resolveLinks(path)) {
  std::error_code error;
  const fs::file_status target = fs::status(path_, error);
  if (fs::is_directory(target)) {
    fail("cannot create: is a folder");
    return;
  }
  errno = 0;
  if (fs::exists(target) && !fs::is_regular_file(target)) {
    file_ = std::fopen(path_.string().c_str(), "wb");
  } else if (!fs::exists(target) || mayWrite(path_)) {
    temporary_ = temporaryBeside(path_);
    file_ = std::fopen(temporary_.string().c_str(), "wbx");
  }
  if (file_ == nullptr) {
    fail("cannot create: " + lastError());
    temporary_.clear();
    return;
  }
  if (!temporary_.empty() && fs::exists(target)) fs::permissions(temporary_, target.permissions(), error);
  std::setvbuf(file_, nullptr, _IONBF, 0);  // writers bring large blocks
}

OutputFile::~OutputFile() {
  discard();
}

std::string OutputFile::writeSome(std::string_view bytes) {
  errno = 0;
  if (file_ == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
    return "cannot write: " + lastError();
  return {};
}

bool OutputFile::commit() {
  if (file_ != nullptr) {
    errno = 0;
    if (std::fclose(std::exchange(file_, nullptr)) != 0) fail("cannot write: " + lastError());
  }
  if (error().empty() && !temporary_.empty()) {
    std::error_code moved;
    fs::rename(temporary_, path_, moved);
    if (moved)
      fail("cannot move into place: " + moved.message());
    else
      temporary_.clear();
  }
  discard();
  return error().empty();
}

void OutputFile::discard() {
  if (file_ != nullptr) std::fclose(std::exchange(file_, nullptr));
  if (!temporary_.empty()) {
    std::error_code ignored;
    fs::remove(temporary_, ignored);
    temporary_.clear();
  }
}

std::string OutputStream::writeSome(std::string_view bytes) {
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size())
    return "cannot write: " + lastError();
  return {};
}

}  // namespace facet
