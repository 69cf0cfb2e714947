#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/shared/EditRequest.h"
#include "kit/TaskLine.h"
#include "queue/QueueJournal.h"
#include "workers/EditedCopy.h"
#include "workers/EditedFile.h"
#include "workers/EditedStore.h"

namespace corvane {

class EditedWatch;
struct EditedHost;

/// The server's files that are open in programs here: each is fetched into a private folder,
/// watched there, and sent back whenever it is saved, but never over a file that has changed on the
/// server meanwhile. Fetching and sending are transfers of the queue; the disk is looked at on
/// other threads. GUI thread.
class EditedFiles : public QObject {
  Q_OBJECT

 public:
  using State = EditedFile::State;

  /// What is to become of a file that has been changed here and on the server.
  enum class Choice {
    KeepBoth,    ///< the copy is sent under a free name, and belongs to that file from then on
    KeepMine,    ///< the copy replaces the state on the server that the user has seen
    TakeTheirs,  ///< the copy becomes what the server has
  };

  /// The copies stand below `folder`, raw bytes. Alerts and programs' troubles stand over `window`.
  EditedFiles(EditedHost& host, const std::string& folder, QWidget* window);
  ~EditedFiles() override;

  /// Takes up what was saved and not sent when the program ended, and what programs still seem to
  /// have open; all else that it left is removed.
  void Restore();

  /// Fetches a file and opens it; one that is edited already is opened again.
  void Open(EditRequest request);
  void OpenAgain(std::int64_t id);
  /// Sends what was saved.
  void SendNow(std::int64_t id);
  /// Tries all now that wait for the network.
  void TryAllNow();
  /// Forgets a file and removes its copy, with what was not sent of it; a transfer of it ends.
  void Stop(std::int64_t id);
  /// Settles a conflict.
  void Settle(std::int64_t id, Choice choice);
  /// Fetches the server's file beside the copy; `then` gets the paths of both.
  void FetchTheirs(std::int64_t id,
                   std::function<void(const std::string& mine, const std::string& theirs)> then);
  /// A line for each file that is not sent yet, for who asks whether to quit.
  [[nodiscard]] QStringList Unsent() const;

  /// Whether the file on the server may hold a part of what was to be sent.
  [[nodiscard]] bool MayBeHalfSent(std::int64_t id) const;

  [[nodiscard]] int Count() const { return static_cast<int>(entries_.size()); }
  [[nodiscard]] const EditedFile& At(int row) const {
    return entries_[static_cast<std::size_t>(row)]->file;
  }
  /// Null where there is no such file.
  [[nodiscard]] const EditedFile* Find(std::int64_t id) const;
  [[nodiscard]] int RowOf(std::int64_t id) const;
  [[nodiscard]] Text Trouble() const { return store_.Trouble(); }

 Q_SIGNALS:
  void Added(int row);
  void Removed(int row);
  void Changed(int row);
  /// Something has gone wrong, or needs the user's choice.
  void NeedsUser(qint64 id);
  /// Files are there that were saved and not sent when the program ended.
  void Restored();

 private:
  /// What a fetched file is for.
  enum class Fetched { First, Again, Taken, Compared };
  struct Entry {
    EditedFile file;
    Site site;             // with what is not kept of it
    bool whole = true;     // whether it is
    bool asks = false;     // what is not kept comes from the user, for the server refused it
    bool launches = true;  // a program is to be started once the copy is there
    bool looking = false;
    bool lookAgain = false;
    bool hadAgain = false;  // the transfer has failed for a reason that may pass
    bool retries = false;   // the transfer has given up, and another one is to be tried
    int transfer = 0;       // the number of the last transfer; news of others do not count
    bool conflict = false;  // the transfer has found another state on the server
    bool direct = false;    // the transfer writes straight into the file on the server
    bool half = false;      // the file on the server may hold a part of what was sent into it
    int names = 0;          // how many free names were tried
    std::string beside;     // the free path of a copy that is sent beside the server's file
    std::string digest;     // of what is being sent
    std::optional<FileVersion> told;
    TransferListener listener;  // of the window that asked first
    std::function<void(const std::string&, const std::string&)> compare;
  };
  using Then = std::function<void(Entry&)>;
  /// What waits for what is not kept of a site.
  struct Pending {
    std::int64_t id;
    Then go;
    Then refused;
  };
  /// What has come of a fetched file on the disk.
  struct Placed {
    int error = 0;
    std::string digest;     // of what was fetched
    bool touched = false;   // the copy has been changed, and stays
    EditedCopy::Look copy;  // how it was before
  };

  [[nodiscard]] Entry* EntryOf(std::int64_t id);
  [[nodiscard]] std::string PathOf(const Entry& entry, EditedCopy::Place place) const;
  Entry& Add(EditedFile file);
  void Set(Entry& entry, State state, const Text& why = {});
  void Keep(const Entry& entry);
  /// Has `work` done elsewhere; `then` follows while the file is edited.
  template <typename Work, typename Finish>
  void Elsewhere(const Entry& entry, Work work, Finish then);
  /// `go` follows once what is not kept of the site is there; `refused` where the user gives none.
  void Complete(Entry& entry, const Then& go, const Then& refused);
  void CompleteNext();
  void LoginRefused(const Site& kept);
  void Completed(const Pending& asked, const Site& kept, const std::optional<Site>& whole);

  void Fetch(Entry& entry, Fetched purpose);
  void BeginFetch(Entry& entry, Fetched purpose);
  void FetchEnded(Entry& entry, Fetched purpose, RowState state, const Text& why);
  [[nodiscard]] static bool IsTouched(Fetched purpose, const EditedCopy::Look& copy,
                                      const std::string& base, const std::string& given);
  void PutInPlace(Entry& entry, Fetched purpose);
  void Arrived(Entry& entry, Fetched purpose, const Placed& placed);
  void FetchFailed(Entry& entry, Fetched purpose, const Text& why);
  void Launch(Entry& entry);

  void LookAt(std::int64_t id);
  void Looked(Entry& entry, const EditedCopy::Look& look);
  void Send(Entry& entry);
  void BeginSend(Entry& entry, const EditedCopy::Look& taken);
  void SendEnded(Entry& entry, RowState state, const Text& why);
  void TellConflict(Entry& entry);
  void SendBeside(Entry& entry);
  void TakeUp(const std::vector<EditedFile>& files);
  [[nodiscard]] transferStruct Described(const Entry& entry) const;
  [[nodiscard]] TransferListener Listener(
      Entry& entry, std::function<void(Entry&, RowState, const Text&)> stands);

  EditedHost& host_;
  const std::string folder_;
  QWidget* const window_;
  EditedStore store_;
  EditedWatch* watch_;
  TaskLine disk_;
  QTimer retry_;
  std::int64_t next_ = 1;
  int transfers_ = 0;
  std::vector<Pending> pending_;
  bool completing_ = false;  // the user is asked for what was not kept
  std::vector<std::unique_ptr<Entry>> entries_;
};

}  // namespace corvane
