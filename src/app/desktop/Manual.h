#pragma once

#include <QString>

class QWidget;

namespace corvane {

/// The manual, as it was installed with the program or built beside it. GUI thread.
class Manual {
 public:
  /// Its first page; empty where there is none.
  [[nodiscard]] static QString FirstPage();
  /// Opens it with whatever the desktop opens pages with. Where that fails, an alert over `window`
  /// says where to look.
  static void Show(QWidget* window);
};

}  // namespace corvane
