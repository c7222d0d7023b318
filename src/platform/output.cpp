#include "platform/output.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <random>
#include <utility>

namespace facet {

namespace fs = std::filesystem;

namespace {

std::string lastError() {
  return std::strerror(errno);
}

/// What stands under the path once links are followed, also where the last leads to no file yet.
fs::path resolveLinks(fs::path path) {
  std::error_code error;
  for (int links = 0; links < 40 && fs::is_symlink(fs::symlink_status(path, error)); ++links)
    path = path.parent_path() / fs::read_symlink(path, error);
  const fs::path resolved = fs::weakly_canonical(path, error);
  return error ? path : resolved;
}

/// A file that is protected stays, although its folder would let it be replaced.
bool mayWrite(const fs::path& existing) {
  std::FILE* file = std::fopen(existing.string().c_str(), "r+b");
  return file != nullptr && std::fclose(file) == 0;
}

/// A name for the bytes of `path` that no other writer uses.
std::string temporaryName(const fs::path& path) {
  static std::atomic<uint32_t> counter = std::random_device{}();
  return "." + path.filename().string().substr(0, 200) + "." + std::to_string(std::random_device{}()) +
         std::to_string(counter++) + ".part";
}

volatile std::sig_atomic_t interruption = 0;

extern "C" void interrupt(int signal) {
  interruption = signal;
  std::signal(signal, SIG_DFL);  // the second one ends the program at once
}

}  // namespace

void stopOnInterruption() {
  for (const int signal : {SIGINT, SIGTERM})
    if (std::signal(signal, interrupt) == SIG_IGN) std::signal(signal, SIG_IGN);
}

bool isInterrupted() {
  return interruption != 0;
}

void endIfInterrupted() {
  if (isInterrupted()) std::raise(interruption);
}

void Output::write(std::string_view bytes) {
  if (!error_.empty()) return;
  if (isInterrupted()) return fail("interrupted");
  std::string reason = writeSome(bytes);
  if (reason.empty())
    bytes_ += bytes.size();
  else
    fail(std::move(reason));
}

void Output::fail(std::string reason) {
  if (error_.empty()) error_ = std::move(reason);
}

void makeFolderOf(const std::filesystem::path& file) {
  std::error_code error;
  if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path(), error);
}

OutputFile::OutputFile(const fs::path& path) : path_(resolveLinks(path)) {
  std::error_code error;
  const fs::file_status target = fs::status(path_, error);
  if (fs::is_directory(target) || !fs::status_known(target)) {
    fail("cannot create: " + (error ? error.message() : "is a folder"));
    return;
  }
  errno = 0;
  if (!fs::exists(target)) {
    openTemporary(path_.parent_path());
  } else if (!fs::is_regular_file(target)) {
    file_ = std::fopen(path_.string().c_str(), "wb");
  } else if (mayWrite(path_)) {
    openTemporary(path_.parent_path());
    if (file_ == nullptr) openTemporary(fs::temp_directory_path(error));  // the folder is protected
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

void OutputFile::openTemporary(const fs::path& folder) {
  temporary_ = folder / temporaryName(path_);
  file_ = std::fopen(temporary_.string().c_str(), "wbx");
}

void OutputFile::moveIntoPlace() {
  std::error_code moved, ignored;
  fs::rename(temporary_, path_, moved);
  if (!moved) return temporary_.clear();
  // A file of a protected folder, or one that is a mount of its own, can only be filled anew.
  if (!fs::exists(path_, ignored)) return fail("cannot move into place: " + moved.message());
  errno = 0;
  std::ifstream from(temporary_, std::ios::binary);
  std::ofstream to(path_, std::ios::binary);
  if (!(to << from.rdbuf()) || !to.flush()) fail("cannot write: " + lastError());
}

std::string OutputFile::writeSome(std::string_view bytes) {
  errno = 0;
  if (file_ == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
    return "cannot write: " + lastError();
  return {};
}

bool OutputFile::close() {
  if (file_ != nullptr) {
    errno = 0;
    if (std::fclose(std::exchange(file_, nullptr)) != 0) fail("cannot write: " + lastError());
  }
  return error().empty();
}

bool OutputFile::commit() {
  if (close() && !temporary_.empty()) moveIntoPlace();
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
