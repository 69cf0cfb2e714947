#include <QCoreApplication>
#include <QPalette>
#include <QStringList>
#include <algorithm>

#include "app/shared/Figures.h"
#include "app/shared/ModernStyle.h"
#include "app/shared/Pace.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

class Rows {
  Q_DECLARE_TR_FUNCTIONS(corvane::TransferItem)

 public:
  static QString FigureOf(const TransferFacts& transfer) {
    if (!transfer.trailing.isEmpty()) return transfer.trailing;
    const bool done = transfer.state == TransferState::Done;
    const std::int64_t whole = transfer.total > 0 ? transfer.total : transfer.there;
    if (whole == 0 && (!done || transfer.several)) return {};
    const bool all = done || transfer.there == 0 || transfer.there >= whole;
    return all ? ShortSize(whole) : ShortSizeOf(transfer.there, whole);
  }

  static QString StateOf(const TransferFacts& transfer) {
    switch (transfer.state) {
      case TransferState::Failed:
        return transfer.failure.isEmpty() ? tr("Failed")
                                          : tr("Failed: %1").arg(Phrase(transfer.failure));
      case TransferState::Partly:
        return tr("%1 of %2 files failed").arg(transfer.failed).arg(transfer.allFiles);
      case TransferState::Cancelled: return tr("Cancelled");
      case TransferState::Done: return Done(transfer);
      case TransferState::Running: return Going(transfer);
      default: return StandingOf(transfer);
    }
  }

 private:
  // A sentence as a part of a row.
  static QString Phrase(const QString& sentence) {
    return sentence.endsWith('.') ? sentence.chopped(1) : sentence;
  }

  static QString Going(const TransferFacts& transfer) {
    if (!transfer.status.isEmpty()) return transfer.status;
    if (QString stalled = StandingOf(transfer); !stalled.isEmpty()) return stalled;
    QStringList parts{transfer.download ? tr("From %1").arg(transfer.host)
                                        : tr("To %1").arg(transfer.host)};
    parts.append(FileCount(transfer));
    parts.removeAll(QString());
    return parts.join(", ");
  }

  static QString Done(const TransferFacts& transfer) {
    QStringList parts{tr("Done"), FileCount(transfer)};
    if (transfer.leftOut > 0) parts.append(tr("%n left out", "", transfer.leftOut));
    parts.append(ProofOf(transfer.proof));
    parts.removeAll(QString());
    return parts.join(", ");
  }

  static QString ProofOf(Proof proof) {
    const auto by = [](const char* digest) { return tr("verified (%1)").arg(digest); };
    switch (proof) {
      case Proof::None: break;
      case Proof::Size: return tr("size checked");
      case Proof::Crc32: return by("CRC-32");
      case Proof::Md5: return by("MD5");
      case Proof::Sha1: return by("SHA-1");
      case Proof::Sha256: return by("SHA-256");
      case Proof::Sha512: return by("SHA-512");
    }
    return {};
  }
};

}  // namespace

TransferWords ModernStyle::RowOf(const TransferFacts& transfer) const {
  return {transfer.name, Rows::FigureOf(transfer), Rows::StateOf(transfer), PaceOf(transfer)};
}

QString ModernStyle::PaceOf(const TransferFacts& transfer) const {
  if (transfer.state != TransferState::Running || transfer.stalled > 0) return {};
  const bool known = transfer.total > 0 && !transfer.planning;
  return PaceText(transfer.rate,
                  known ? std::max<std::int64_t>(transfer.total - transfer.there, 0) : -1);
}

QColor ModernStyle::BarOf(TransferState state, const QPalette& palette) const {
  switch (state) {
    case TransferState::Running: return ToneOf(palette, Tone::Running);
    case TransferState::Paused:
    case TransferState::Again: return ToneOf(palette, Tone::Stopped);
    default: return {};
  }
}

QString ModernStyle::DirectionOf(bool /*download*/) const {
  return {};
}

const char* ModernStyle::ItemText(const char* own, const char* /*described*/) const {
  return own;
}

QString ModernStyle::TransferTitle(int running) const {
  QString title = QCoreApplication::translate("corvane::DownLoadWin", "Transfer List");
  if (running == 0) return title;
  return title + QString::fromUtf8(" – ") +
         QCoreApplication::translate("corvane::DownLoadWin", "%n running", nullptr, running);
}

}  // namespace corvane
