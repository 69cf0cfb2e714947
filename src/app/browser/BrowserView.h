#pragma once

#include <QWidget>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/browser/MWListItem.h"
#include "kit/Message.h"

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace corvane {

class DirListView;
class SmallView;
class TransferView;

/// What a browser window shows: path, listing, count, status, and the buttons beside them. GUI
/// thread.
class BrowserView : public QWidget {
  Q_OBJECT

 public:
  /// `transfer` shows what is moved on the window's own connection; the view takes it over.
  BrowserView(QWidget* window, TransferView* transfer);

  [[nodiscard]] DirListView& Listing() { return *listing_; }
  [[nodiscard]] const DirListView& Listing() const { return *listing_; }
  [[nodiscard]] QLineEdit& Path() { return *path_; }
  [[nodiscard]] TransferView& Transfer() { return *transfer_; }
  [[nodiscard]] const TransferView& Transfer() const { return *transfer_; }
  [[nodiscard]] bool UsesSameConnection() const;

  void ShowStatus(const QString& text);
  /// What is being typed in the field stays.
  void ShowPath(const QString& path);
  void ClearListing();
  void ShowCount(std::size_t count);
  void RemoveRow(const std::string& name);
  /// A row that had the new name is replaced, as its entry is.
  void RenameRow(const std::string& from, const std::string& to);
  void ChangeValues(const std::string& name, std::int64_t size);
  /// Adds or renews the row of an entry that has just been uploaded into the directory shown.
  void ShowUploaded(const std::string& name, bool isFile, std::int64_t size);

  /// Enables what makes requests of the connection. A listing that is disabled is grey, and so is
  /// the path field then.
  void SetUsable(bool ready, bool listingEnabled);
  /// The room that the view wants below a menu bar of that height.
  void SetLeastHeight(int menuBar);

 Q_SIGNALS:
  void DownloadPressed();
  void UploadPressed();

 private:
  void MakeParts();
  QWidget* MakeStatusBox();
  void Arrange();

  QLineEdit* path_;
  QLabel* status_ = nullptr;
  DirListView* listing_;
  SmallView* count_;
  QCheckBox* sameConnection_;
  TransferView* transfer_;
  QPushButton* download_;
  QPushButton* upload_;
  QGridLayout* layout_ = nullptr;
};

}  // namespace corvane
