#include "workers/Comparing.h"

#include <algorithm>
#include <span>
#include <vector>

namespace corvane {

Outcome SameTail(const LocalFile& file, RemoteFile& data, std::int64_t end, bool& same) {
  const std::int64_t offset = data.Offset();
  std::vector<char> local(static_cast<std::size_t>(end - offset));
  std::vector<char> remote(local.size());
  std::size_t count = 0;
  same = file.ReadAt(offset, local, count) == 0 && count == local.size();
  for (std::size_t have = 0; same && have < remote.size(); have += count) {
    if (Outcome outcome = data.Read(std::span(remote).subspan(have), count); !outcome.IsDone())
      return outcome;
    if (count == 0) same = false;
  }
  same = same && local == remote;
  return {};
}

bool AddBeginning(const LocalFile& file, std::int64_t end, Digest& digest,
                  const std::atomic<bool>& cancelled) {
  constexpr std::int64_t kBlock = std::int64_t{256} * 1024;
  std::vector<char> block(static_cast<std::size_t>(std::min(kBlock, end)));
  for (std::int64_t at = 0; at < end;) {
    const auto wanted = static_cast<std::size_t>(std::min(kBlock, end - at));
    std::size_t got = 0;
    if (cancelled || file.ReadAt(at, std::span(block).first(wanted), got) != 0 || got == 0)
      return false;
    digest.Add(std::span(block).first(got));
    at += static_cast<std::int64_t>(got);
  }
  return true;
}

}  // namespace corvane
