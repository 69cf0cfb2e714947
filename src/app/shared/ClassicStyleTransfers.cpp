#include <QCoreApplication>
#include <QStringList>

#include "app/shared/ClassicStyle.h"

namespace corvane {
namespace {

// The texts belong to the rows, whichever style asks for them.
QString Tr(const char* text) {
  return QCoreApplication::translate("corvane::TransferItem", text);
}

QString RateOf(const TransferFacts& transfer) {
  return Tr(QT_TRANSLATE_NOOP("corvane::TransferItem", "%1 bytes/sec"))
      .arg(transfer.stalled > 0 ? 0 : transfer.mean, 0, 'f', 0);
}

QString BytesOf(const TransferFacts& transfer) {
  if (!transfer.trailing.isEmpty()) return transfer.trailing;
  if (transfer.total > 0) {
    return QStringLiteral("%1/%2").arg(transfer.there).arg(transfer.total);
  }
  return transfer.there > 0 ? QString::number(transfer.there) : QString();
}

QString CountOf(const TransferFacts& transfer) {
  QStringList counts;
  const bool some = transfer.several && transfer.allFiles > transfer.files;
  if (some && transfer.state != TransferState::Paused) {
    counts.append(Tr(QT_TRANSLATE_NOOP("corvane::TransferItem", "%1 of %2 done"))
                      .arg(transfer.files)
                      .arg(transfer.allFiles));
  } else if (transfer.several && transfer.files > 0) {
    counts.append(
        QCoreApplication::translate("corvane::TransferItem", "%n done", nullptr, transfer.files));
  }
  if (transfer.state == TransferState::Done && transfer.leftOut > 0) {
    counts.append(QCoreApplication::translate("corvane::TransferItem", "%n left out", nullptr,
                                              transfer.leftOut));
  }
  return counts.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(counts.join(", "));
}

QString LabelOf(const TransferFacts& transfer) {
  switch (transfer.state) {
    case TransferState::Failed:
    case TransferState::Partly:
    case TransferState::Cancelled:
      return transfer.file.isEmpty() ? transfer.failure : transfer.file + ": " + transfer.failure;
    case TransferState::Running:
      if (!transfer.status.isEmpty()) return transfer.status;
      break;
    default: break;
  }
  if (QString standing = StandingOf(transfer); !standing.isEmpty()) return standing;
  return transfer.file.isEmpty()
             ? QString()
             : Tr(QT_TRANSLATE_NOOP("corvane::TransferItem", "File: %1")).arg(transfer.file);
}

}  // namespace

TransferWords ClassicStyle::RowOf(const TransferFacts& transfer) const {
  const QString label = (LabelOf(transfer) + CountOf(transfer)).trimmed();
  const QString target =
      (transfer.download ? Tr(QT_TRANSLATE_NOOP("corvane::TransferItem", "Saving to: "))
                         : Tr(QT_TRANSLATE_NOOP("corvane::TransferItem", "Uploading to: "))) +
      transfer.target;
  return {Tr(QT_TRANSLATE_NOOP("corvane::TransferItem", "Server: %1")).arg(transfer.host),
          RateOf(transfer), label.isEmpty() ? target : label + ", " + target, BytesOf(transfer)};
}

QString ClassicStyle::PaceOf(const TransferFacts& transfer) const {
  return RateOf(transfer);
}

QColor ClassicStyle::BarOf(TransferState state, const QPalette& /*palette*/) const {
  switch (state) {
    case TransferState::Failed:
    case TransferState::Partly:
    case TransferState::Cancelled: return {228, 0, 0};
    case TransferState::Done: return {0, 0, 154};
    default: return {0, 152, 51};
  }
}

QString ClassicStyle::DirectionOf(bool download) const {
  return download ? QCoreApplication::translate("corvane::TransferPane", "Download: ")
                  : QCoreApplication::translate("corvane::TransferPane", "Upload: ");
}

const char* ClassicStyle::ItemText(const char* /*own*/, const char* described) const {
  return described;
}

QString ClassicStyle::TransferTitle(int /*running*/) const {
  return QCoreApplication::translate("corvane::DownLoadWin", "Transfer List");
}

}  // namespace corvane
