#include "platform/library.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace facet {

std::optional<void*> loadLibraryEntry(const std::string& library, const std::string& entry) {
#ifdef _WIN32
  const HMODULE module = LoadLibraryA(library.c_str());
  if (module == nullptr) return {};
  return reinterpret_cast<void*>(GetProcAddress(module, entry.c_str()));
#else
  void* module = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) return {};
  return dlsym(module, entry.c_str());
#endif
}

}  // namespace facet
