#include "remote/FileVersion.h"

namespace corvane {

bool MayBeSame(const FileVersion& one, const FileVersion& other) {
  if (one.there != other.there) return false;
  if (!one.there) return true;
  if (one.size >= 0 && other.size >= 0 && one.size != other.size) return false;
  if (one.kind != DigestKind::None && one.kind == other.kind) return one.digest == other.digest;
  return !one.modified || !other.modified || *one.modified == *other.modified;
}

void AddVersion(Message& message, const FileVersion& version) {
  message.AddBool("there", version.there);
  message.AddInt64("size", version.size);
  if (version.modified) message.AddInt64("modified", *version.modified);
  message.AddInt32("kind", static_cast<std::int32_t>(version.kind));
  message.AddString("digest", version.digest);
}

FileVersion VersionIn(const Message& message) {
  FileVersion version;
  version.there = message.FindBool("there").value_or(true);
  version.size = message.FindInt64("size").value_or(-1);
  version.modified = message.FindInt64("modified");
  const std::int32_t kind = message.FindInt32("kind").value_or(0);
  if (kind >= 0 && kind <= static_cast<std::int32_t>(DigestKind::Sha512))
    version.kind = static_cast<DigestKind>(kind);
  version.digest = message.FindString("digest").value_or("");
  return version;
}

}  // namespace corvane
