#include "workers/FileViewer.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "remote/RemotePath.h"
#include "remote/RemoteSession.h"
#include "util/PictureBytes.h"
#include "workers/ListingCache.h"

namespace corvane {
namespace {

Outcome Fill(RemoteFile& file, TextSink& viewer) {
  constexpr long kStep = 250;  // milliseconds
  std::vector<char> buffer(std::size_t{64} * 1024);
  std::optional<bool> picture;
  for (;;) {
    while (!file.Wait(kStep))
      if (!viewer.Append({})) return {};
    std::size_t count = 0;
    Outcome outcome = file.Read(buffer, count);
    if (outcome.IsDone() && count > 0) {
      const auto begin = buffer.begin();
      auto end = begin + static_cast<std::ptrdiff_t>(count);
      if (!picture) picture = LooksLikePicture({buffer.data(), count});
      if (!*picture) end = std::remove(begin, end, '\r');
      if (viewer.Append({buffer.data(), static_cast<std::size_t>(end - begin)})) continue;
      viewer.End({});
      return {};
    }
    if (outcome.IsDone()) outcome = file.Finish();
    viewer.End(outcome.IsDone() ? Text()
                                : Text("The file is not complete: %1", outcome.text.Reason()));
    return outcome;
  }
}

}  // namespace

Outcome ViewFile(RemoteSession& session, BrowserUi& window, const std::string& path) {
  std::unique_ptr<RemoteFile> file;
  if (Outcome opened = session.OpenForReading(path, 0, file); !opened.IsDone()) return opened;
  if (const auto viewer = window.OpenViewer(Text::Raw(SplitPath(path).second))) {
    if (Fill(*file, *viewer).kind == Outcome::Kind::Cancelled) return Outcome::Cancelled();
  }
  file.reset();
  if (session.IsLost()) return {Outcome::Kind::Lost, 0, session.HowLost().why};
  return {};
}

void ViewListing(ListingCache& cache, BrowserUi& window, const std::string& directory) {
  const auto viewer = window.OpenViewer(Text("Listing of: %1", directory));
  if (!viewer) return;
  const bool shown =
      cache.Directory() == directory &&
      cache.Read([&viewer](std::string_view bytes) { return viewer->Append(bytes); });
  viewer->End(shown ? Text() : Text("The listing could not be read."));
}

}  // namespace corvane
