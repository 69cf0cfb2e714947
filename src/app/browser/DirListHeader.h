#pragma once

#include <QHeaderView>

#include "settings/ListingLooks.h"

namespace corvane {

/// The listing's column titles. The name takes what the others leave of the width, and where that
/// is little, others make way. GUI thread.
class DirListHeader : public QHeaderView {
  Q_OBJECT

 public:
  using Columns = decltype(ListingLook::columns);

  explicit DirListHeader(QWidget* parent);

  /// The columns that are wanted, whether there is room for them or not.
  [[nodiscard]] const Columns& Wanted() const { return wanted_; }
  void SetWanted(const Columns& columns);
  /// Lays the columns out in `width` pixels.
  void Fit(int width);

 Q_SIGNALS:
  /// The user has made a column wider or narrower.
  void WidthsChanged();

 protected:
  bool event(QEvent* event) override;
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;

 private:
  [[nodiscard]] int WidthOf(int column) const;
  [[nodiscard]] int LeastName() const;
  [[nodiscard]] int NextShown(int column) const;
  void SetHeight();
  void UserResized(int column, int before, int now);

  Columns wanted_ = ListingLook().columns;
  int width_ = 0;
  bool fitting_ = false;
};

}  // namespace corvane
