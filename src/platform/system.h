#pragma once

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

// What each system does in its own way. posix/ holds it for Linux and its like; a room above never asks which
// system it runs on.

namespace facet {

/// One name of a folder and what stands under it. A link to a file is a file; a link to a folder is neither,
/// so that walking down a tree comes to an end.
struct FolderEntry {
  enum Kind : uint8_t { file, folder, other };

  std::string name;
  Kind kind = other;
};

/// Appends the names of a folder, without "." and "..", in the order of their bytes; the reason where it
/// cannot be read. Throws std::bad_alloc.
std::error_code listFolder(const std::filesystem::path& folder, std::vector<FolderEntry>& entries);

/// Loads a dynamic library by its name, for the life of the process, and looks up one of its exports. None
/// when the library cannot be loaded; a null address when it has no such export.
std::optional<void*> loadLibraryEntry(const std::string& library, const std::string& entry);

/// Has the memory that this process takes from now on come in large pages and stay with it when it is freed,
/// where the system can do that: a process that reads and draws a model otherwise spends most of its time on
/// being given small pages. For programs that do one thing and end; call it before any thread is started.
void preferLargePages();

/// Has the calling thread run only while no other one wants its core, where the system can do that.
void letOthersGoFirst();

/// True when a person watches the stream.
bool isTerminal(std::FILE* stream);

/// The same number pair for all names of one existing file, links followed; none where there is no file.
struct FileId {
  uint64_t device, number;
  auto operator<=>(const FileId&) const = default;
};
std::optional<FileId> fileId(const std::filesystem::path& path);

}  // namespace facet
