// Whatever names a server gives: what is written stands beneath the target or is refused, and what
// stood there stays unless it was to be replaced. The input is lines of one letter, what is to be
// done, and a name: new, replace, go on, append, down; any other looks.
#include <fcntl.h>

#include <filesystem>

#include "Fuzz.h"
#include "support/Files.h"
#include "support/TemporaryDirectory.h"
#include "util/FreeNames.h"
#include "util/LocalFile.h"

namespace {

using namespace corvane;
namespace fs = std::filesystem;

// A target with all that may be in the way, and what is beside it.
void Prepare(const fs::path& root) {
  fs::remove_all(root / "target");
  fs::create_directories(root / "target" / "dir");
  fs::create_directories(root / "outside");
  Write(root / "target" / "mine", "mine");
  Write(root / "outside" / "theirs", "theirs");
  fs::create_symlink("../outside", root / "target" / "out");
  fs::create_symlink("../outside/theirs", root / "target" / "link");
  fs::create_symlink("../outside/new", root / "target" / "nowhere");
}

void CheckNames(FreeNames& names, const std::string& name) {
  const std::string part = PartFile::NameFor(name);
  Check(part.size() <= 255 && PartFile::IsPartName(part) && IsSafeLocalName(part));
  const std::string once = names.Next(name, name.size() % 2 == 0);
  Check(names.IsTaken(once) && names.Next(name, false) != once && once.size() <= 255);
  Check(IsSafeLocalName(once));
}

std::string PathOf(int fd) {
  return fs::read_symlink("/proc/self/fd/" + std::to_string(fd));
}

void Store(const LocalFolder& folder, const std::string& name, LocalFile::Mode mode) {
  LocalFile file;
  if (file.Open(folder, name, mode) != 0) return;
  Check(IsSafeLocalName(name));
  if (file.Write(std::string_view("new")) == 0) (void)file.Commit(Durability::Later);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TemporaryDirectory temporary;
  static const fs::path root = fs::canonical(temporary.Path());
  Prepare(root);
  auto folder = std::make_unique<LocalFolder>();
  Check(folder->Open(root / "target") == 0);
  FreeNames names;
  bool mayReplace = false;
  std::string_view input(reinterpret_cast<const char*>(data), size);
  for (int steps = 0; !input.empty() && steps < 20; ++steps) {
    const std::string_view line = Take(input);
    const std::string name(line.substr(line.empty() ? 0 : 1));
    if (IsSafeLocalName(name) && name.size() <= 255) CheckNames(names, name);
    mayReplace = mayReplace || name == "mine";
    const char what = line.empty() ? '\0' : line[0];
    if (const std::size_t mode = std::string_view("nrga").find(what); mode < 4) {
      Store(*folder, name, static_cast<LocalFile::Mode>(mode));
    } else if (what == 'd') {
      auto below = std::make_unique<LocalFolder>();
      if (below->Enter(*folder, name) != 0) continue;
      Check(IsSafeLocalName(name) && PathOf(below->Fd()) == PathOf(folder->Fd()) + "/" + name);
      folder = std::move(below);
    } else if (const UniqueFd fd(OpenBeneath(folder->Fd(), name, O_RDONLY | O_NONBLOCK)); fd) {
      Check((PathOf(fd.get()) + "/").starts_with(PathOf(folder->Fd()) + "/"));
    }
  }
  Check(std::distance(fs::directory_iterator(root), {}) == 2);
  Check(std::distance(fs::directory_iterator(root / "outside"), {}) == 1);
  Check(Contents(root / "outside" / "theirs") == "theirs");
  Check(fs::is_symlink(root / "target" / "link") && fs::is_symlink(root / "target" / "out"));
  Check(mayReplace || Contents(root / "target" / "mine") == "mine");
  return 0;
}
