#include "platform/system.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace facet {

namespace fs = std::filesystem;

namespace {

FolderEntry::Kind kindOf(int folder, const dirent& entry) {
  if (entry.d_type == DT_REG) return FolderEntry::file;
  if (entry.d_type == DT_DIR) return FolderEntry::folder;
  struct stat itself, target;
  if (fstatat(folder, entry.d_name, &itself, AT_SYMLINK_NOFOLLOW) != 0) return FolderEntry::other;
  if (S_ISDIR(itself.st_mode)) return FolderEntry::folder;
  const bool found = fstatat(folder, entry.d_name, &target, 0) == 0;
  return found && S_ISREG(target.st_mode) ? FolderEntry::file : FolderEntry::other;
}

}  // namespace

// By the system's own calls: where memory runs out, libstdc++'s iterator ends the process.
std::error_code listFolder(const fs::path& folder, std::vector<FolderEntry>& entries) {
  struct Close {
    void operator()(DIR* listing) const { closedir(listing); }
  };
  const std::unique_ptr<DIR, Close> listing(opendir(folder.c_str()));
  if (!listing && errno == ENOMEM) throw std::bad_alloc();
  if (!listing) return {errno, std::generic_category()};
  const auto first = static_cast<ptrdiff_t>(entries.size());
  errno = 0;
  while (const dirent* entry = readdir(listing.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") entries.push_back({name, kindOf(dirfd(listing.get()), *entry)});
    errno = 0;
  }
  const int failure = errno;
  std::sort(entries.begin() + first, entries.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return {failure, std::generic_category()};
}

std::optional<void*> loadLibraryEntry(const std::string& library, const std::string& entry) {
  void* module = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) return {};
  return dlsym(module, entry.c_str());
}

void preferLargePages() {
#ifdef __GLIBC__
  constexpr int reserve = 1 << 30, page = 2 << 20;  // addresses only: what is never touched takes no memory
  constexpr int separately = 32 << 20;              // blocks from this size on go back when they are freed
  const auto address = [](void* place) { return reinterpret_cast<uintptr_t>(place); };
  if (address(sbrk(reserve)) == UINTPTR_MAX) return;  // where addresses are limited all stays as it is
  sbrk(-reserve);
  mallopt(M_MMAP_THRESHOLD, separately);
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  mallopt(M_TOP_PAD, reserve);
  char* const start = static_cast<char*>(sbrk(0));
  void* volatile block = std::malloc(1 << 20);  // more than the heap has room for: it takes the reserve
  std::free(block);
  mallopt(M_TOP_PAD, page);
  char* const end = static_cast<char*>(sbrk(0));
  char* const first = start + (page - address(start) % page) % page;
  if (first < end) madvise(first, static_cast<size_t>(end - first), MADV_HUGEPAGE);
#endif
}

void letOthersGoFirst() {
#ifdef SCHED_IDLE
  const sched_param parameters{};
  pthread_setschedparam(pthread_self(), SCHED_IDLE, &parameters);
#endif
}

bool isTerminal(std::FILE* stream) {
  return isatty(fileno(stream)) != 0;
}

std::optional<FileId> fileId(const fs::path& path) {
  struct stat found;
  if (stat(path.c_str(), &found) != 0) return {};
  return FileId{found.st_dev, found.st_ino};
}

}  // namespace facet
