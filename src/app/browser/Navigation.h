#pragma once

#include <QObject>
#include <map>
#include <string>
#include <vector>

#include "app/browser/History.h"
#include "app/browser/ListingPlace.h"

namespace corvane {

class MWindow;

/// The ways of a browser window through the server's directories, and what was selected in each.
/// GUI thread. Paths are raw bytes.
class Navigation : public QObject {
  Q_OBJECT

 public:
  /// `window` owns this object.
  explicit Navigation(MWindow& window);

  void Back();
  void Forward();
  /// To where the connection began.
  void Home();
  /// Enters what stands in the path field.
  void PathEntered();
  /// Enters what the path field or the selection names.
  void ChangeDirectory();

  /// The window has come to show `path`.
  void Visit(const std::string& path);
  /// The rows are about to go.
  void ListingBegins();
  /// Others have come: says what is to be selected in them.
  void ListingEnded();
  /// What is to be selected once the next listing of this directory has come.
  void SelectNext(const std::string& name) { next_ = name; }

  [[nodiscard]] const History& Shown() const { return history_; }
  /// The directories shown, and those in the one that is shown, for the path field.
  [[nodiscard]] std::vector<std::string> Recent() const { return history_.Recent(); }
  [[nodiscard]] std::vector<std::string> Below() const;

 private:
  MWindow& window_;
  History history_;
  std::string home_;
  bool begun_ = false;  // a listing, and the place in the one before is known
  bool steps_ = false;  // back or forward, until a listing comes
  std::string listed_;  // the directory of the rows
  std::string next_;
  std::map<std::string, ListingPlace> places_;
};

}  // namespace corvane
