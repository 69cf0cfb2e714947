#include "workers/RemoteVersion.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "workers/MayPass.h"

namespace corvane {
namespace {

using Kind = Outcome::Kind;

// The checksum of what the server sends.
Outcome ReadThrough(RemoteSession& session, const std::string& path,
                    const std::atomic<bool>& cancelled, FileVersion& version) {
  std::unique_ptr<RemoteFile> file;
  if (Outcome opened = session.OpenForReading(path, 0, file); !opened.IsDone()) return opened;
  Digest digest(DigestKind::Sha256);
  std::vector<char> buffer(std::size_t{64} * 1024);
  std::int64_t size = 0;
  for (;;) {
    if (cancelled) return Outcome::Cancelled();
    std::size_t count = 0;
    if (Outcome outcome = file->Read(buffer, count); !outcome.IsDone()) return outcome;
    if (count == 0) break;
    digest.Add(std::span(buffer).first(count));
    size += static_cast<std::int64_t>(count);
  }
  if (Outcome outcome = file->Finish(); !outcome.IsDone()) return outcome;
  version.size = size;
  version.digest = digest.Take();
  version.kind = version.digest.empty() ? DigestKind::None : DigestKind::Sha256;
  return {};
}

}  // namespace

Outcome AskVersion(RemoteSession& session, const std::string& path, Thorough thorough,
                   const std::atomic<bool>& cancelled, FileVersion& version) {
  version = {};
  std::optional<std::int64_t> size;
  if (Outcome asked = session.Size(path, size); MayPass(asked)) return asked;
  if (!size) {
    if (Outcome asked = session.Exists(path, version.there); !asked.IsDone()) return asked;
    if (!version.there) return {};
  }
  version.size = size.value_or(-1);
  std::optional<RemoteTime> time;
  if (Outcome asked = session.ModifiedTime(path, time); MayPass(asked)) return asked;
  if (time) version.modified = time->seconds;
  if (thorough == Thorough::No) return {};
  if (const DigestKind kind = session.OffersDigest(); kind != DigestKind::None) {
    Outcome asked = session.Checksum(path, version.size, kind, version.digest);
    if (MayPass(asked)) return asked;
    if (asked.IsDone()) version.kind = kind;
  }
  if (version.modified || version.kind != DigestKind::None) return {};
  return ReadThrough(session, path, cancelled, version);
}

}  // namespace corvane
