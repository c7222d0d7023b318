#include "platform/files.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <vector>

#include "platform/system.h"
#include "platform/text.h"

namespace facet {

namespace fs = std::filesystem;

size_t ByteSource::fetchWatched(uint64_t position, std::byte* destination, size_t count) {
  if (progress_ == nullptr) return fetch(position, destination, count);
  size_t came = 0;
  while (came < count) {
    const double share = static_cast<double>(position + came) / static_cast<double>(size_);
    progress_->reach(from_ + (to_ - from_) * static_cast<float>(share));
    const size_t piece = std::min(count - came, mostAtOnce);
    const size_t got = fetch(position + came, destination + came, piece);
    came += got;
    if (got < piece) break;
  }
  return came;
}

bool ByteSource::read(void* destination, uint64_t count) {
  if (count > remaining()) return false;
  auto* out = static_cast<std::byte*>(destination);
  if (count >= windowSize) {
    if (fetchWatched(position_, out, count) != count) return false;
    position_ += count;
    return true;
  }
  for (uint64_t done = 0; done < count;) {
    const uint64_t at = position_ + done;
    if (at < windowStart_ || at >= windowStart_ + windowLength_) {
      window_.resize(windowSize);
      windowStart_ = at;
      windowLength_ = fetchWatched(at, window_.data(), std::min<uint64_t>(windowSize, size_ - at));
      if (windowLength_ == 0) return false;
    }
    const uint64_t part = std::min(count - done, windowStart_ + windowLength_ - at);
    std::memcpy(out + done, window_.data() + (at - windowStart_), part);
    done += part;
  }
  position_ += count;
  return true;
}

std::string ByteSource::readText(uint64_t end) {
  std::string text;
  char c = 0;
  while (position_ < end && read(c) && c != 0) text += c;
  return text;
}

namespace {

class FileSource : public ByteSource {
 public:
  FileSource(std::ifstream file, uint64_t size) : ByteSource(size), file_(std::move(file)) {}

 private:
  size_t fetch(uint64_t position, void* destination, size_t count) override {
    file_.clear();
    if (position != at_) file_.seekg(static_cast<std::streamoff>(position));
    file_.read(static_cast<char*>(destination), static_cast<std::streamsize>(count));
    const auto came = static_cast<size_t>(file_.gcount());
    at_ = position + came;
    return came;
  }

  std::ifstream file_;
  uint64_t at_ = 0;
};

class MemorySource : public ByteSource {
 public:
  explicit MemorySource(std::span<const std::byte> bytes) : ByteSource(bytes.size()), bytes_(bytes) {}

 private:
  size_t fetch(uint64_t position, void* destination, size_t count) override {
    std::memcpy(destination, bytes_.data() + position, count);
    return count;
  }

  std::span<const std::byte> bytes_;
};

}  // namespace

namespace {

std::string inWords(int code) {
  if (code == ENOENT || code == ENOTDIR) return "no such file";
  if (code == ELOOP) return "its links lead in a circle";
  std::string text = std::generic_category().message(code);
  return lowerCase(text.substr(0, 1)) + text.substr(1);
}

/// Why there is no file to read under this path, or an empty text.
std::string whyNoFile(const fs::path& path) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  if (type == fs::file_type::not_found && fs::is_symlink(fs::symlink_status(path)))
    return "a link to nothing";
  if (type == fs::file_type::not_found) return inWords(ENOENT);
  if (error) return inWords(error.value());
  if (type == fs::file_type::directory) return "is a folder";
  if (type == fs::file_type::fifo) return "is a pipe, not a file";
  return type == fs::file_type::regular ? "" : "is a device, not a file";
}

}  // namespace

std::unique_ptr<ByteSource> openFile(const fs::path& path, std::string* whyNot) {
  std::string reason = whyNoFile(path);
  if (reason.empty()) {
    std::ifstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0);  // the source has a window of its own
    errno = 0;
    file.open(path, std::ios::binary);
    std::error_code error;
    const uint64_t size = fs::file_size(path, error);
    if (file && !error) return std::make_unique<FileSource>(std::move(file), size);
    reason = inWords(error ? error.value() : errno);
  }
  if (whyNot != nullptr) *whyNot = std::move(reason);
  return nullptr;
}

std::unique_ptr<ByteSource> openMemory(std::span<const std::byte> bytes) {
  return std::make_unique<MemorySource>(bytes);
}

namespace {
constexpr std::string_view separators = "\\/";

bool isFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

}  // namespace

/// The names of one folder, by their lower-case form.
struct FileFinder::Listing {
  std::multimap<std::string, std::string, std::less<>> names;
};

FileFinder::FileFinder() = default;
FileFinder::~FileFinder() = default;

const FileFinder::Listing& FileFinder::listing(const fs::path& folder) {
  auto& known = listings_[folder.string()];
  if (!known) {
    auto read = std::make_unique<Listing>();
    std::vector<FolderEntry> entries;
    listFolder(folder, entries);  // a folder that cannot be read has no names
    for (FolderEntry& entry : entries) {
      std::string key = lowerCase(entry.name);
      read->names.emplace(std::move(key), std::move(entry.name));
    }
    known = std::move(read);
  }
  return *known;
}

std::optional<fs::path> FileFinder::find(std::string_view name) {
  if (name.find('\0') != std::string_view::npos) return {};
  if (isFile(fs::path(name))) return fs::path(name);
  std::string unified(name);
  std::replace(unified.begin(), unified.end(), '\\', fs::path::preferred_separator == '\\' ? '\\' : '/');
  const fs::path asGiven(unified);
  if (isFile(asGiven)) return asGiven;

  // Folder by folder, each by its listing: the exact name, else the first that differs in case only.
  std::vector<fs::path> candidates = {asGiven.root_path()};
  for (const fs::path& part : asGiven.relative_path()) {
    std::vector<fs::path> next;
    for (const fs::path& folder : candidates) {
      if (part == "." || part == "..") {
        next.push_back(folder / part);
        continue;
      }
      const Listing& known = listing(folder.empty() ? fs::path(".") : folder);
      const auto [first, last] = known.names.equal_range(lowerCase(part.string()));
      for (auto match = first; match != last; ++match) {
        const bool exact = match->second == part.string();
        next.insert(exact ? next.begin() : next.end(), folder / match->second);
      }
    }
    candidates = std::move(next);
  }
  const auto found = std::find_if(candidates.begin(), candidates.end(), isFile);
  if (found == candidates.end()) return {};
  return *found;
}

std::string_view fileName(std::string_view path) {
  const size_t last = path.find_last_of(separators);
  return last == std::string_view::npos ? path : path.substr(last + 1);
}

std::string lowerExtension(std::string_view path) {
  const std::string_view name = fileName(path);
  const size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string() : lowerCase(name.substr(dot));
}

bool isRooted(std::string_view path) {
  return path.starts_with('/') || (path.size() > 1 && path[1] == ':');
}

}  // namespace facet
