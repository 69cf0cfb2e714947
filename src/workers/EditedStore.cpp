#include "workers/EditedStore.h"

#include <unistd.h>

#include <chrono>
#include <functional>
#include <optional>
#include <utility>

#include "kit/Mutex.h"
#include "kit/TaskLine.h"
#include "util/SqliteFile.h"
#include "workers/EditedCopy.h"

namespace corvane {
namespace {

using Values = SqliteFile::Values;
using Columns = SqliteFile::Columns;

constexpr const char* kName = "/edited.sqlite";
constexpr std::chrono::milliseconds kAtEnd(1000);  // for which the end of the program waits

// The bits of the column "edits".
constexpr std::int64_t kEdits = 1;
constexpr std::int64_t kInPlace = 2;

constexpr SqliteFile::Layout kLayout{
    .version = 1,
    .tables =
        "CREATE TABLE files("
        "id INTEGER PRIMARY KEY, host TEXT NOT NULL, port INTEGER NOT NULL, user TEXT NOT NULL,"
        "passive INTEGER NOT NULL, security INTEGER NOT NULL, encoding TEXT NOT NULL,"
        "certificate TEXT NOT NULL, asksPassword INTEGER NOT NULL, keptPassword INTEGER NOT NULL,"
        "remote TEXT NOT NULL, name TEXT NOT NULL, edits INTEGER NOT NULL,"
        "digest TEXT NOT NULL, size INTEGER NOT NULL, modified INTEGER, kind INTEGER NOT NULL,"
        "there INTEGER NOT NULL, theirs TEXT NOT NULL, sentAt INTEGER NOT NULL) STRICT",
    .alone = true};

template <typename Enum>
std::int64_t Number(Enum value) {
  return static_cast<std::int64_t>(value);
}

void Fill(Values& values, const EditedFile& file) {
  const Site& site = file.site;
  values.Add(file.id).Add(site.host).Add(site.port).Add(site.user).Add(site.passive);
  values.Add(Number(site.security)).Add(site.encoding).Add(site.clientCertificate);
  values.Add(site.asksPassword).Add(site.keptPassword);
  values.Add(file.remote).Add(file.name);
  values.Add((file.edits ? kEdits : 0) | (file.inPlace ? kInPlace : 0)).Add(file.digest);
  values.Add(file.version.size);
  file.version.modified ? values.Add(*file.version.modified) : values.AddNull();
  values.Add(Number(file.version.kind)).Add(file.version.there).Add(file.version.digest);
  values.Add(file.sentAt);
}

// Nothing where the row says what cannot be.
std::optional<EditedFile> FileOf(Columns& columns) {
  EditedFile file;
  Site& site = file.site;
  file.id = columns.Number();
  site.host = columns.Bytes();
  const std::int64_t port = columns.Number();
  site.port = static_cast<std::uint16_t>(port);
  site.user = columns.Bytes();
  site.passive = columns.Number() != 0;
  const std::int64_t security = columns.Number();
  site.security = static_cast<Security>(security);
  site.encoding = columns.Bytes();
  site.clientCertificate = columns.Bytes();
  site.asksPassword = columns.Number() != 0;
  site.keptPassword = columns.Number() != 0;
  file.remote = columns.Bytes();
  file.name = columns.Bytes();
  const std::int64_t edits = columns.Number();
  file.edits = (edits & kEdits) != 0;
  file.inPlace = (edits & kInPlace) != 0;
  file.digest = columns.Bytes();
  file.version.size = columns.Number();
  if (!columns.SkipsNull()) file.version.modified = columns.Number();
  const std::int64_t kind = columns.Number();
  file.version.kind = static_cast<DigestKind>(kind);
  file.version.there = columns.Number() != 0;
  file.version.digest = columns.Bytes();
  file.sentAt = columns.Number();
  file.state = EditedFile::State::Changed;
  constexpr std::int64_t kMostIds = std::int64_t{1} << 52;
  const bool makesSense = file.id > 0 && file.id < kMostIds && port > 0 && port == site.port &&
                          security >= 0 && security <= Number(Security::Plain) && kind >= 0 &&
                          kind <= Number(DigestKind::Sha512) && !file.remote.empty() &&
                          file.name == EditedCopy::SafeName(file.name);
  return makesSense ? std::optional(std::move(file)) : std::nullopt;
}

}  // namespace

class EditedStore::Writer : public std::enable_shared_from_this<EditedStore::Writer> {
 public:
  explicit Writer(const std::string& folder)
      : folder_(folder), file_(folder + kName, kLayout), line_("edited store") {}

  [[nodiscard]] Kept Load();
  void Write(std::function<int(SqliteFile&)> work);
  void Close();
  [[nodiscard]] Text Trouble() const EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    return trouble_;
  }

 private:
  [[nodiscard]] bool Open(bool make);
  void Say(const Text& trouble) EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    trouble_ = trouble;
  }

  const std::string folder_;
  SqliteFile file_;  // Load's, then the line's
  TaskLine line_;
  mutable Mutex lock_;
  Text trouble_ GUARDED_BY(lock_);
};

// A file that cannot be used makes room for a new one.
bool EditedStore::Writer::Open(bool make) {
  using Opened = SqliteFile::Opened;
  if (make && !file_.IsOpen()) (void)EditedCopy::MakeFolder(folder_);
  Opened opened = file_.Open(make);
  if (opened == Opened::Damaged || opened == Opened::OtherVersion) {
    const std::string name = file_.PutAside();
    Say(
        Text("The list of edited files could not be read. It is kept as %1, and the copies stay "
             "beside it.",
             name));
    opened = file_.Open(make);
  }
  if (opened != Opened::Yes && opened != Opened::Missing)
    Say(Text("The list of edited files cannot be kept: %1", file_.Why()));
  return opened == Opened::Yes;
}

// Copies are of files in a list that was put aside, as long as that one is there.
EditedStore::Kept EditedStore::Writer::Load() {
  Kept kept;
  if (folder_.empty() || !Open(false)) return kept;
  bool dropped = false;
  const int status = file_.Run(
      "SELECT id, host, port, user, passive, security, encoding, certificate, asksPassword,"
      " keptPassword, remote, name, edits, digest, size, modified, kind, there, theirs, sentAt"
      " FROM files ORDER BY id",
      {}, [&kept, &dropped](Columns& columns) {
        auto file = FileOf(columns);
        dropped = dropped || !file;
        if (file) kept.files.push_back(std::move(*file));
      });
  if (dropped)
    Say(Text("Some edited files could not be taken up. Their copies stand in %1.", folder_));
  if (status != 0)
    Say(Text("The list of edited files cannot be kept: %1", SqliteFile::Words(status)));
  const bool aside = ::access(SqliteFile::FirstAside(folder_ + kName).c_str(), F_OK) == 0;
  kept.complete = status == 0 && !dropped && !aside;
  return kept;
}

void EditedStore::Writer::Write(std::function<int(SqliteFile&)> work) {
  if (folder_.empty()) return;
  line_.Add([self = shared_from_this(), work = std::move(work)] {
    if (!self->Open(true)) return;
    const int status = work(self->file_);
    if (status != 0)
      self->Say(Text("The list of edited files cannot be kept: %1", SqliteFile::Words(status)));
  });
}

void EditedStore::Writer::Close() {
  (void)line_.Wait(kAtEnd);
}

EditedStore::EditedStore(const std::string& folder) : writer_(std::make_shared<Writer>(folder)) {}

EditedStore::~EditedStore() {
  writer_->Close();
}

EditedStore::Kept EditedStore::Load() {
  return writer_->Load();
}

void EditedStore::Keep(const EditedFile& file) {
  writer_->Write([file](SqliteFile& store) {
    return store.Run(
        "INSERT OR REPLACE INTO files VALUES"
        "(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        [&file](Values& values) { Fill(values, file); });
  });
}

void EditedStore::Remove(std::int64_t id) {
  writer_->Write([id](SqliteFile& store) {
    return store.Run("DELETE FROM files WHERE id = ?", [id](Values& values) { values.Add(id); });
  });
}

Text EditedStore::Trouble() const {
  return writer_->Trouble();
}

}  // namespace corvane
