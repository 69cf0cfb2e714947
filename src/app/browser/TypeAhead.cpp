#include "app/browser/TypeAhead.h"

namespace corvane {

const QString& TypeAhead::Type(const QString& key, quint64 milliseconds) {
  constexpr quint64 kPause = 950;
  const bool follows =
      last_.has_value() && milliseconds >= *last_ && milliseconds - *last_ < kPause;
  if (!follows) typed_.clear();
  last_ = milliseconds;
  return typed_ += key;
}

}  // namespace corvane
