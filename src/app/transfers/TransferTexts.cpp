#include "app/transfers/TransferTexts.h"

#include <QStringList>
#include <algorithm>

#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Style.h"
#include "app/transfers/TransferItem.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

constexpr std::size_t kNotesShown = 20;
constexpr qsizetype kNoteLength = 200;
constexpr std::string_view kLost = "The connection was lost: %1";

/// One note as one short line.
QString Short(const QString& line) {
  return line.size() <= kNoteLength ? line : line.first(kNoteLength) + QChar(0x2026);
}

QString StateName(TransferState state) {
  switch (state) {
    case TransferState::Waiting: return TransferItem::tr("Waiting");
    case TransferState::Running: return TransferItem::tr("Running");
    case TransferState::Paused: return TransferItem::tr("Paused");
    case TransferState::Again: return TransferItem::tr("Trying again");
    case TransferState::Failed: return TransferItem::tr("Failed");
    case TransferState::Partly: return TransferItem::tr("Partly failed");
    case TransferState::Cancelled: return TransferItem::tr("Cancelled");
    case TransferState::Done: return TransferItem::tr("Finished");
  }
  return {};
}

}  // namespace

TransferFacts TransferTexts::Facts() const {
  const transferStruct& what = item_.Description();
  const TransferReport& report = item_.LastReport();
  const TransferProgress& progress = item_.Progress();
  const RowStanding& standing = item_.Standing();
  const bool ended = item_.Failed();
  return {
      .state = item_.State(),
      .download = item_.IsDownload(),
      .host = ToText(what.site.host),
      .target = item_.IsDownload() ? ToText(what.targetFolder)
                                   : ToText(what.remoteDirectory, what.site.encoding),
      .name = Name(),
      .file = FileName(),
      .status = ShownInLine(report.label),
      .trailing = ShownInLine(report.trailing),
      .failure = Reason().simplified(),
      .several = item_.IsSeveral(),
      .there = item_.There(),
      .total = progress.total,
      .rate = item_.Rate(),
      .mean = item_.Mean(),
      .files = static_cast<int>(progress.files.load()),
      .allFiles = static_cast<int>(progress.allFiles.load()),
      .planning = progress.planning,
      .failed = ended ? static_cast<int>(item_.Counted().failed) : 0,
      .leftOut = static_cast<int>(item_.Notes().size()),
      .before = standing.before,
      .seconds = item_.Seconds(),
      .tries = standing.tries,
      .most = standing.most,
      .stalled = item_.Stalled(),
      .proof = progress.proof,
  };
}

TransferWords TransferTexts::Words() const {
  return Style::InForce().RowOf(Facts());
}

QString TransferTexts::Name() const {
  if (item_.Chosen() == 0) return FileName();
  const std::string& encoding = item_.Description().site.encoding;
  QString first = item_.IsDownload() ? ToText(SplitPath(item_.First().remote).second, encoding)
                                     : ToText(SplitPath(item_.First().local).second);
  if (item_.Chosen() == 1) return first;
  return TransferItem::tr("%1 and %n more", "", item_.Chosen() - 1).arg(first);
}

QString TransferTexts::ServerLine() const {
  return TransferItem::tr("Server: %1").arg(ToText(item_.Description().site.host));
}

QString TransferTexts::TargetLine() const {
  return (item_.IsDownload() ? TransferItem::tr("Saving to: ")
                             : TransferItem::tr("Uploading to: ")) +
         Facts().target;
}

QString TransferTexts::FileName() const {
  return ToText(item_.LastReport().file, item_.Description().site.encoding);
}

QString TransferTexts::FileWithCount() const {
  QString file = item_.LastReport().file.empty() ? Name() : FileName();
  const QString count = FileCount(Facts());
  return count.isEmpty() ? file : QStringLiteral("%1 (%2)").arg(file, count);
}

// While it is tried again there is room for a few words only; the tip has the whole.
QString TransferTexts::Reason() const {
  if (item_.Stands() != RowState::Again) return FailureText();
  const Text& reason = item_.LastReport().reason;
  if (reason.Identifier() == kLost) return TransferItem::tr("connection lost");
  return Shown(reason.Reason());
}

QString TransferTexts::FailureText() const {
  if (!item_.Failed() && item_.Stands() != RowState::Again) return {};
  if (!item_.LastReport().reason.IsEmpty()) return Shown(item_.LastReport().reason);
  if (!item_.Failed()) return {};
  return item_.WasCancelled() ? TransferItem::tr("Cancelled.")
                              : TransferItem::tr("The transfer failed.");
}

QString TransferTexts::FailureLine() const {
  if (!item_.Failed()) return {};
  std::string file = item_.LastReport().file;
  if (file.empty() && item_.Chosen() == 1) file = SplitPath(item_.First().remote).second;
  const QString reason = FailureText().simplified();
  return file.empty() ? reason : ToText(file, item_.Description().site.encoding) + ": " + reason;
}

int TransferTexts::CountNoteLines() const {
  return static_cast<int>(std::min(item_.Notes().size(), kNotesShown + 1));
}

// A note's first place is the entry that it is about, its second what is said of it.
std::vector<std::pair<QString, QString>> TransferTexts::NoteLines() const {
  std::vector<std::pair<QString, QString>> lines;
  const std::size_t shown = std::min(item_.Notes().size(), kNotesShown);
  for (std::size_t i = 0; i < shown; ++i) {
    const Text& note = item_.Notes()[i];
    if (note.Places().size() == 2) {
      lines.emplace_back(Short(ShownInLine(note.Places()[0])),
                         Short(ShownInLine(note.Places()[1])));
    } else {
      lines.emplace_back(Short(ShownInLine(note)), QString());
    }
  }
  if (item_.Notes().size() > shown) {
    const auto more = static_cast<int>(item_.Notes().size() - shown);
    lines.emplace_back(QString(), TransferItem::tr("and %n more", "", more));
  }
  return lines;
}

QString TransferTexts::Details() const {
  const QString failure = FailureText();
  QStringList lines{failure.isEmpty() ? TargetLine() : failure};
  const std::size_t shown = std::min(item_.Notes().size(), kNotesShown);
  for (std::size_t note = 0; note < shown; ++note) {
    lines.append(Short(ShownInLine(item_.Notes()[note])));
  }
  if (item_.Notes().size() > shown)
    lines.append(
        TransferItem::tr("and %n more", "", static_cast<int>(item_.Notes().size() - shown)));
  return lines.join('\n');
}

QString TransferTexts::Summary() const {
  const TransferWords words = Words();
  QStringList parts{Name(), StateName(item_.State())};
  if (item_.Running()) {
    parts.append(TransferItem::tr("%1 %").arg(static_cast<int>(100 * item_.Fraction())));
  }
  parts << words.figure << words.pace << words.state << ServerLine() << TargetLine();
  parts.removeAll(QString());
  parts.removeDuplicates();
  return parts.join(QStringLiteral(", "));
}

}  // namespace corvane
