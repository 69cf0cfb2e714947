// What a browser window settles with the user when a download meets something that is there
// already.

#include <sys/stat.h>

#include <optional>
#include <utility>

#include "app/browser/MWindow.h"
#include "app/shared/Alerts.h"
#include "app/shared/ScreenText.h"
#include "util/Beneath.h"

namespace corvane {
namespace {

/// What stands at `path`, a link itself and not where it leads; nothing when nothing does.
std::optional<struct stat> LocalEntry(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return {};
  return status;
}

}  // namespace

void MWindow::DownloadOne(DownloadRequest request, const std::string& localName) {
  if (!IsSafeLocalName(localName)) {
    Warn(tr("\"%1\" cannot be the name of a local file.").arg(ToText(localName)));
    return;
  }
  request.items.front().displayName = localName;
  const std::optional<struct stat> there = LocalEntry(request.where + "/" + localName);
  if (!there.has_value()) {
    HandOver(std::move(request));
  } else if (S_ISREG(there->st_mode)) {
    AskAndHandOver(std::move(request), there->st_size);
  } else if (S_ISDIR(there->st_mode) && request.items.front().type == kDirectory) {
    Alerts::Show(this,
                 {.title = tr("Alert!"),
                  .text = tr("The folder \"%1\" exists already.\n\nFiles in it that have the same "
                             "names as those on the server are replaced.")
                              .arg(ToText(localName)),
                  .buttons = {tr("&Download"), tr("Cancel")},
                  .preset = 1},
                 [this, request](int button) mutable {
                   if (button == 0) HandOver(std::move(request));
                 });
  } else {
    const QString kind = S_ISDIR(there->st_mode)   ? tr("a folder")
                         : S_ISLNK(there->st_mode) ? tr("a link")
                                                   : tr("no plain file");
    Warn(tr("\"%1\" in the download folder is %2 and is left alone.").arg(ToText(localName), kind));
  }
}

void MWindow::AskAndHandOver(DownloadRequest request, std::int64_t localSize) {
  const QString name = ToText(request.items.front().name);
  Alerts::Question question;
  question.title = tr("Alert!");
  const bool whole = localSize == request.size;
  if (whole) {
    question.text = tr("You have already downloaded the file %1.").arg(name) + "\n\n" +
                    tr("Would you like to download the file again?");
    question.buttons = {tr("&Download"), tr("Cancel")};
  } else {
    question.text = tr("Part of the file %1 already exists.").arg(name) + "\n\n" +
                    tr("Would you like to overwrite or reget the file?");
    question.buttons = {tr("&Reget"), tr("&Overwrite"), tr("Cancel")};
  }
  const auto cancel = static_cast<int>(question.buttons.size()) - 1;
  Alerts::Show(this, question, [this, whole, cancel, request](int button) mutable {
    if (button == cancel) return;
    request.overwrite = whole || button == 1;
    HandOver(std::move(request));
  });
}

// Folders of the same name are gone into and nothing in them is asked about.
void MWindow::DownloadSeveral(DownloadRequest request) {
  const auto exists = [&where = request.where](const fileStruct& item) {
    if (item.type == kDirectory) return false;
    const std::optional<struct stat> there = LocalEntry(where + "/" + LocalName(item));
    return there.has_value() && !S_ISDIR(there->st_mode);
  };
  std::vector<fileStruct> fresh = request.items;
  const auto existing = static_cast<int>(std::erase_if(fresh, exists));
  if (existing == 0) return HandOver(std::move(request));
  constexpr int kSkip = 1;
  constexpr int kCancel = 2;
  Alerts::Show(
      this,
      {.title = tr("Alert!"),
       .text = existing == 1 ? tr("1 of these files exists already. Overwrite it?")
                             : tr("%n of these files exist already. Overwrite them?", "", existing),
       .buttons = {tr("&Overwrite"), existing == 1 ? tr("&Skip it") : tr("&Skip them"),
                   tr("Cancel")},
       .preset = kSkip},
      [this, request = std::move(request), fresh = std::move(fresh)](int button) mutable {
        if (button == kCancel) return;
        if (button == kSkip) request.items = std::move(fresh);
        if (!request.items.empty()) HandOver(std::move(request));
      });
}

}  // namespace corvane
