#include "prefs/ExternalPrefs.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace corvane {
namespace {

constexpr const char* kLibrary = "libprefs.so";

struct LibraryCloser {
  void operator()(void* library) const { ::dlclose(library); }
};
using Library = std::unique_ptr<void, LibraryCloser>;

Library Open(const std::string& path) {
  return Library(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
}

// The directory of the running program, up to and including the last "/".
std::string ProgramDirectory() {
  std::error_code ignored;
  const std::string program = std::filesystem::read_symlink("/proc/self/exe", ignored).string();
  return program.substr(0, program.rfind('/') + 1);
}

Library OpenFirst() {
  if (Library library = Open(kLibrary)) return library;
  const char* const path = std::getenv("LIBRARY_PATH");
  if (path == nullptr) return nullptr;
  std::string_view rest = path;
  for (;;) {
    const std::size_t end = rest.find(':');
    std::string entry(rest.substr(0, end));
    if (entry.starts_with("%A/")) entry.replace(0, 2, ProgramDirectory());
    if (Library library = Open(entry + "/" + kLibrary)) return library;
    if (end == std::string_view::npos) return nullptr;
    rest.remove_prefix(end + 1);
  }
}

template <typename Function>
bool Find(const Library& library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(::dlsym(library.get(), name));
  if (function == nullptr) std::puts(name);
  return function != nullptr;
}

}  // namespace

std::optional<PrefFunctions> LoadExternalPrefs() {
  Library library = OpenFirst();
  if (!library) return std::nullopt;
  PrefFunctions all{};
  const bool whole =
      Find(library, "PREFVersion", all.version) && Find(library, "PREFInit", all.init) &&
      Find(library, "PREFShutdown", all.shutdown) && Find(library, "PREFLoadSet", all.loadSet) &&
      Find(library, "PREFSaveSet", all.saveSet) && Find(library, "PREFReloadSet", all.reloadSet) &&
      Find(library, "PREFDisposeSet", all.disposeSet) &&
      Find(library, "PREFSetData", all.setData) && Find(library, "PREFDelete", all.deleteItem) &&
      Find(library, "PREFGetData", all.getData) &&
      Find(library, "PREFGetMessage", all.getMessage) &&
      Find(library, "PREFListApplications", all.listApplications) &&
      Find(library, "PREFDisposeApplicationCookie", all.disposeApplicationCookie) &&
      Find(library, "PREFListSets", all.listSets) &&
      Find(library, "PREFDisposeSetCookie", all.disposeSetCookie) &&
      Find(library, "PREFBeginTransaction", all.beginTransaction) &&
      Find(library, "PREFEndTransaction", all.endTransaction) &&
      Find(library, "PREFListen", all.listen) && Find(library, "PREFListData", all.listData) &&
      Find(library, "PREFDisposeDataCookie", all.disposeDataCookie) &&
      Find(library, "PREFRemoveApp", all.removeApp) &&
      Find(library, "PREFRemoveSet", all.removeSet);
  if (!whole) return std::nullopt;
  static_cast<void>(library.release());  // in use until the process ends
  return all;
}

}  // namespace corvane
