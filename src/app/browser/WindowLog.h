#pragma once

#include <QWidget>
#include <string_view>

class QPlainTextEdit;

namespace corvane {

/// The conversation of one browser window. Closing hides it; it dies with the browser window.
class WindowLog : public QWidget {
  Q_OBJECT

 public:
  WindowLog(QWidget* browser, const QString& title);

  /// Adds raw text, line by line.
  void Append(std::string_view text);
  /// Shows the window, or brings it forward.
  void BringForward();

 private:
  QPlainTextEdit* text_;
};

}  // namespace corvane
