#include "app/transfers/TransferTexts.h"

#include <QStringList>
#include <algorithm>

#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/transfers/TransferItem.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

constexpr std::size_t kNotesShown = 20;
constexpr qsizetype kNoteLength = 200;

/// One note as one short line.
QString NoteLine(const Text& note) {
  const QString line = ShownInLine(note);
  return line.size() <= kNoteLength ? line : line.first(kNoteLength) + QChar(0x2026);
}

}  // namespace

QString TransferTexts::ServerLine() const {
  return TransferItem::tr("Server: %1").arg(ToText(item_.Description().site.host));
}

QString TransferTexts::TargetTitle() const {
  return item_.IsDownload() ? TransferItem::tr("Saving to: ") : TransferItem::tr("Uploading to: ");
}

QString TransferTexts::TargetPath() const {
  return ToText(item_.IsDownload() ? item_.Description().targetFolder
                                   : item_.Description().remoteDirectory);
}

QString TransferTexts::FileName() const {
  return ToText(item_.LastReport().file);
}

QString TransferTexts::Label() const {
  if (item_.Running() && !item_.LastReport().label.IsEmpty())
    return ShownInLine(item_.LastReport().label);
  if (!item_.LastReport().file.empty()) return TransferItem::tr("File: %1").arg(FileName());
  return {};
}

QString TransferTexts::CountText() const {
  QStringList counts;
  const std::int64_t files = item_.Progress().files;
  if (files > 0) counts.append(TransferItem::tr("%n done", "", static_cast<int>(files)));
  if (item_.Finished() && item_.HasNotes())
    counts.append(TransferItem::tr("%n left out", "", static_cast<int>(item_.Notes().size())));
  return counts.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(counts.join(", "));
}

QString TransferTexts::RateText() const {
  const TransferProgress& progress = item_.Progress();
  const double seconds = static_cast<double>(progress.elapsed.load()) / 1e6;
  const double rate = seconds > 0 ? static_cast<double>(progress.done.load()) / seconds : 0;
  return TransferItem::tr("%1 bytes/sec").arg(rate, 0, 'f', 0);
}

QString TransferTexts::TotalText() const {
  if (!item_.LastReport().trailing.IsEmpty()) return Shown(item_.LastReport().trailing);
  const TransferProgress& progress = item_.Progress();
  const std::int64_t there = progress.start + progress.done;
  if (progress.total <= 0) return there > 0 ? QString::number(there) : QString();
  return QStringLiteral("%1/%2").arg(there).arg(progress.total.load());
}

QString TransferTexts::FailureText() const {
  if (!item_.Failed()) return {};
  if (!item_.LastReport().reason.IsEmpty()) return Shown(item_.LastReport().reason);
  return *item_.LastReport().end == TransferEnd::Cancelled
             ? TransferItem::tr("Cancelled.")
             : TransferItem::tr("The transfer failed.");
}

QString TransferTexts::FailureLine() const {
  if (!item_.Failed()) return {};
  std::string file = item_.LastReport().file;
  if (file.empty() && item_.Description().jobs.size() == 1)
    file = SplitPath(item_.Description().jobs.front().remote).second;
  const QString reason = FailureText().simplified();
  return file.empty() ? reason : ToText(file) + ": " + reason;
}

QString TransferTexts::Details() const {
  QStringList lines{item_.Failed() ? FailureText() : TargetTitle() + TargetPath()};
  const std::size_t shown = std::min(item_.Notes().size(), kNotesShown);
  for (std::size_t note = 0; note < shown; ++note) lines.append(NoteLine(item_.Notes()[note]));
  if (item_.Notes().size() > shown)
    lines.append(
        TransferItem::tr("and %n more", "", static_cast<int>(item_.Notes().size() - shown)));
  return lines.join('\n');
}

QString TransferTexts::Summary() const {
  QStringList parts{ServerLine(), TargetTitle() + TargetPath(), Label() + CountText(), TotalText()};
  if (item_.Running()) parts.append(RateText());
  if (item_.Finished()) parts.append(TransferItem::tr("Finished"));
  if (item_.Failed()) parts.append(FailureLine());
  parts.removeAll(QString());
  return parts.join(QStringLiteral(", "));
}

}  // namespace corvane
