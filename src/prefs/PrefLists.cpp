#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "prefs/BuiltInPrefs.h"
#include "prefs/PrefPaths.h"
#include "prefs/PrefRecords.h"

namespace corvane {
namespace {

struct Item {
  std::string name;
  std::uint32_t type = 0;
};

// What was there when a listing began, and how far it has come.
struct Listing {
  explicit Listing(std::vector<Item> all) : items(std::move(all)) {}

  const Item* Next() { return next < items.size() ? &items[next++] : nullptr; }

  std::vector<Item> items;
  std::size_t next = 0;
};

}  // namespace

struct PREFDataCookie : Listing {
  using Listing::Listing;
};
struct PREFApplicationCookie : Listing {
  using Listing::Listing;
};
struct PREFSetCookie : Listing {
  using Listing::Listing;
};

namespace builtin {
namespace {

namespace fs = std::filesystem;

PREFStatus GiveNext(Listing& listing, char* name, std::int32_t size,
                    std::uint32_t* type = nullptr) {
  const Item* const item = listing.Next();
  if (item == nullptr) return kPrefNotFound;
  const std::size_t length = item->name.copy(name, static_cast<std::size_t>(size) - 1);
  name[length] = '\0';
  if (type != nullptr) *type = item->type;
  return 0;
}

template <typename Cookie>
PREFStatus Dispose(Cookie* cookie) {
  if (cookie == nullptr) return -EINVAL;
  delete cookie;
  return 0;
}

std::vector<Item> InOrder(std::vector<Item> items) {
  std::sort(items.begin(), items.end(),
            [](const Item& a, const Item& b) { return a.name < b.name; });
  return items;
}

std::vector<Item> Applications(const std::string& base) {
  std::vector<Item> found;
  std::error_code ended;
  fs::directory_iterator entry(base, ended);
  for (; !ended && entry != fs::directory_iterator(); entry.increment(ended)) {
    const std::string name = entry->path().filename();
    std::error_code ignored;
    if (!name.starts_with(kAppPrefix) || !entry->is_directory(ignored)) continue;
    found.push_back({name.substr(kAppPrefix.size())});
  }
  return InOrder(std::move(found));
}

// The sets below a directory, those in subdirectories as "sub/name".
std::vector<Item> Sets(const fs::path& directory) {
  std::vector<Item> found;
  std::error_code ended;
  fs::recursive_directory_iterator entry(directory, fs::directory_options::skip_permission_denied,
                                         ended);
  for (; !ended && entry != fs::recursive_directory_iterator(); entry.increment(ended)) {
    const std::string name = entry->path().filename();
    std::error_code ignored;
    if (!entry->is_regular_file(ignored) || IsTemporary(name) || IsDamaged(name)) continue;
    found.push_back({entry->path().lexically_relative(directory)});
  }
  return InOrder(std::move(found));
}

}  // namespace

PREFStatus ListData(PREFSet* set, PREFDataCookie** cookie, char* name, std::int32_t size,
                    std::uint32_t* type) {
  if (cookie == nullptr || name == nullptr || size <= 0 || type == nullptr) return -EINVAL;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  if (*cookie == nullptr) {
    std::vector<Item> items;
    for (const std::string& each : set->message.Names()) {
      items.push_back({each, set->message.TypeOf(each).value_or(0)});
    }
    *cookie = new PREFDataCookie(std::move(items));
  }
  return GiveNext(**cookie, name, size, type);
}

PREFStatus ListApplications(bool perUser, PREFApplicationCookie** cookie, char* name,
                            std::int32_t size) {
  if (cookie == nullptr || name == nullptr || size <= 0) return -EINVAL;
  if (*cookie == nullptr) *cookie = new PREFApplicationCookie(Applications(BaseDirectory(perUser)));
  return GiveNext(**cookie, name, size);
}

PREFStatus ListSets(PREFApp* app, bool perUser, PREFSetCookie** cookie, char* name,
                    std::int32_t size) {
  if (cookie == nullptr || name == nullptr || size <= 0) return -EINVAL;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(app)) return status;
  if (*cookie == nullptr) {
    *cookie = new PREFSetCookie(Sets(SetDirectory(BaseDirectory(perUser), app->name, perUser)));
  }
  return GiveNext(**cookie, name, size);
}

PREFStatus DisposeDataCookie(PREFDataCookie* cookie) {
  return Dispose(cookie);
}

PREFStatus DisposeApplicationCookie(PREFApplicationCookie* cookie) {
  return Dispose(cookie);
}

PREFStatus DisposeSetCookie(PREFSetCookie* cookie) {
  return Dispose(cookie);
}

}  // namespace builtin
}  // namespace corvane
