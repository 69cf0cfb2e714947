#include "app/browser/LocalDrop.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "app/browser/MWindow.h"
#include "app/shared/ScreenText.h"
#include "util/LocalUrl.h"

namespace corvane {

LocalDrop LocalDrop::Read(std::string_view list) {
  LocalDrop drop;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find_first_of("\r\n"), list.size());
    const std::string_view address = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    if (address.empty() || address.front() == '#') continue;
    if (std::optional<std::string> path = LocalPathOf(address); path.has_value()) {
      drop.paths.push_back(*std::move(path));
    } else {
      drop.foreign.append(ToText(address));
    }
  }
  return drop;
}

QString LocalDrop::Complaint() const {
  constexpr qsizetype kMostNamed = 10;
  if (foreign.isEmpty()) return {};
  QString text = MWindow::tr("These are no files of this machine and are left out:") + "\n\n" +
                 foreign.mid(0, kMostNamed).join('\n');
  const auto unnamed = static_cast<int>(foreign.size() - kMostNamed);
  if (unnamed > 0) text += '\n' + MWindow::tr("and %n more", "", unnamed);
  return text;
}

}  // namespace corvane
