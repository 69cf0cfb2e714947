#pragma once

#include <QWidget>
#include <cstddef>
#include <cstdint>
#include <string>

#include "app/browser/FailurePage.h"
#include "app/browser/MWListItem.h"

class QPushButton;
class QStackedWidget;
class QVBoxLayout;

namespace corvane {

class BrowserPane;
class BrowserToolBar;
class ConnectingPage;
class DirListView;
class FilterLine;
class PathField;
class StatusLine;
class Strip;
class TransferView;

/// What a browser window shows: the bar with the path, the listing with its pane or, while there is
/// none, how connecting goes, and the status line. GUI thread.
class BrowserView : public QWidget {
  Q_OBJECT

 public:
  /// `transfer` shows what is moved on the window's own connection; the view takes it over.
  BrowserView(QWidget* window, TransferView* transfer);

  [[nodiscard]] DirListView& Listing() { return *listing_; }
  [[nodiscard]] const DirListView& Listing() const { return *listing_; }
  [[nodiscard]] PathField& Path();
  [[nodiscard]] BrowserToolBar& Bar() { return *bar_; }
  [[nodiscard]] BrowserPane& Pane() { return *pane_; }
  [[nodiscard]] TransferView& Transfer();
  [[nodiscard]] const TransferView& Transfer() const;
  [[nodiscard]] StatusLine& Status() { return *status_; }
  [[nodiscard]] ConnectingPage& Connecting() { return *connecting_; }

  void ShowListing();
  /// In place of the listing: how connecting to `host` goes.
  void ShowConnecting(const QString& host);
  /// In place of the listing: why no connection came about.
  void ShowFailure(const FailurePage::Failure& failure, const Site& site);
  /// Above the listing, which stays: the connection is gone.
  void ShowLoss(const QString& heading, const QString& reason);
  void ShowLossAgain();
  void HideLoss();
  /// Above the listing, until the user has read it.
  void ShowNotice(const QString& text);
  [[nodiscard]] bool ShowsListing() const;

  /// Opens the line that filters the listing, or closes it.
  void ToggleFilter();
  void CloseFilter();

  void ClearListing();
  /// How many entries there are, or are selected, in the status line.
  void ShowCount();
  /// The free space on the server, which stands beside the count; negative where it did not tell.
  void ShowFree(std::int64_t bytes);
  void RemoveRow(const std::string& name);
  /// A row that had the new name is replaced, as its entry is.
  void RenameRow(const std::string& from, const std::string& to);
  void ChangeValues(const std::string& name, std::int64_t size);
  /// Adds or renews the row of an entry that has just been uploaded into the directory shown.
  void ShowEntry(const MWListItem& item);

  /// Enables what makes requests of the connection. A listing that is disabled is grey, and so is
  /// the path field then.
  void SetUsable(bool ready, bool listingEnabled);
  void SetBusy(bool busy);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 Q_SIGNALS:
  void ConnectAgainPressed();
  void CancelPressed();
  void TryAgainPressed(const corvane::Site& site);
  void ClosePressed();
  void DiagnosePressed();

 private:
  QWidget* MakeBrowsingPage();
  void Arrange();

  BrowserToolBar* bar_;
  Strip* loss_;
  QPushButton* diagnose_;
  QPushButton* again_;
  QWidget* lossRoom_;
  QVBoxLayout* notices_;
  QStackedWidget* pages_;
  DirListView* listing_;
  FilterLine* filter_;
  BrowserPane* pane_;
  ConnectingPage* connecting_;
  FailurePage* failure_;
  StatusLine* status_;
  std::int64_t free_ = -1;
};

}  // namespace corvane
