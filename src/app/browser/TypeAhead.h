#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// What is typed into a listing to find a name by its beginning. A value; not locked.
class TypeAhead {
 public:
  /// Takes the text of one key, at that time of the desktop's; a pause begins anew. Returns all
  /// that counts.
  const QString& Type(const QString& key, quint64 milliseconds);
  void Forget() { last_.reset(); }

 private:
  QString typed_;
  std::optional<quint64> last_;
};

}  // namespace corvane
