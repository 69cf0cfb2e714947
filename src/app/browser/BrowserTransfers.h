#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <functional>
#include <string>
#include <vector>

#include "app/shared/TransferListener.h"
#include "workers/TransferPlan.h"
#include "workers/WalkUi.h"

class QFileDialog;

namespace corvane {

struct BrowserHost;
class MWindow;

/// What a browser window asks to have moved: it settles with the user what becomes of what is there
/// already, once for all entries of an action, and hands the transfer over. GUI thread.
class BrowserTransfers : public QObject {
  Q_OBJECT

 public:
  /// Rows that are to be downloaded, and the server directory in which they stood.
  struct Chosen {
    std::string directory;
    std::vector<TransferPlan::Entry> entries;
    QStringList refused;  ///< names that no local file can have; of several rows only
  };

  /// `window` owns this object.
  BrowserTransfers(BrowserHost& host, MWindow& window);

  /// What is selected now; "." and ".." are left out of several rows.
  [[nodiscard]] Chosen Selected() const;
  /// The row of that name alone; nothing where there is none.
  [[nodiscard]] Chosen Named(const std::string& name) const;

  /// Downloads into the download folder or, where there is none, asks where to.
  void Download(Chosen chosen);
  /// Likewise, wherever they stand.
  void Download(const std::vector<FoundEntry>& entries);
  /// Downloads into `folder`, raw bytes; asks where to when it is empty.
  void DownloadInto(const std::string& folder, Chosen chosen);
  /// Opens the selected files in programs here, or in the text editor.
  void OpenSelected(bool edits);
  /// Begins a drag of what is selected, with the pointer on a row.
  void DragRows(int pressed);

  /// Lets the user choose what to upload into the directory shown.
  void ChooseUploads();
  /// Uploads local paths, raw bytes, into the directory shown, or into `below` in it.
  void Upload(const std::vector<std::string>& paths, const std::string& below = {});

 private:
  /// The directory of an upload and what stood in it when the upload was begun.
  struct UploadPlace {
    std::string directory;
    TransferPlan::Names names;
    bool known = true;  ///< whether the names are
  };
  /// Gets a plan that it may take.
  using Planned = std::function<void(TransferPlan& plan)>;

  void WarnOfNames(const QStringList& refused);
  /// Asks for the target of a download.
  void SaveDialogBox(Chosen chosen);
  void AskForName(Chosen chosen);
  void AskForFolder(Chosen chosen);
  /// Looks at the target folder, elsewhere; `then` follows on the GUI thread.
  void Look(const std::string& folder, std::vector<TransferPlan::Entry> entries, Planned then);
  /// Has another thread make a plan; `then` follows while the window stands.
  void Plan(std::function<TransferPlan()> make, Planned then);
  void LookAndSettle(const std::string& folder, Chosen chosen);
  void SettleDownload(const std::string& directory, TransferPlan& plan);
  void Start(const std::string& directory, const TransferPlan& plan);

  [[nodiscard]] UploadPlace PlaceNow() const;
  void SettleUpload(UploadPlace place, const std::vector<std::string>& paths);
  [[nodiscard]] std::vector<TransferPlan::Entry> UploadEntries(
      const std::vector<std::string>& paths);
  void StartUpload(const TransferPlan& plan);

  /// To the transfer window or, where the box is ticked, to this window's own connection.
  void HandOver(transferStruct description);
  /// A transfer with nothing in it yet.
  [[nodiscard]] transferStruct Described(const std::string& directory) const;
  void TransferHere(transferStruct description);
  /// Hears of a transfer while the window stands.
  [[nodiscard]] TransferListener Listener();

  BrowserHost& host_;
  MWindow& window_;
  QPointer<QFileDialog> namePanel_;
  QPointer<QFileDialog> folderPanel_;
  QPointer<QFileDialog> uploadPanel_;
};

}  // namespace corvane
