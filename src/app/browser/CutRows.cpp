#include "app/browser/CutRows.h"

#include <utility>

namespace corvane {
namespace {

CutRows& TheRows() {
  static CutRows rows;
  return rows;
}

}  // namespace

const CutRows& CutRows::Current() {
  return TheRows();
}

void CutRows::Cut(CutRows rows) {
  TheRows() = std::move(rows);
}

void CutRows::Forget() {
  TheRows() = {};
}

// A server shows each of its users names of their own.
bool CutRows::CanMoveTo(const Site& to, const std::string& into) const {
  return !names.empty() && into != directory && to.host == site.host && to.port == site.port &&
         to.user == site.user;
}

}  // namespace corvane
