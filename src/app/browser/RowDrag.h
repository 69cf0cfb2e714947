#pragma once

#include <QObject>
#include <QPixmap>
#include <functional>
#include <memory>
#include <string>

class QIcon;
class QWidget;

namespace corvane {

class ExtractService;

/// One drag of rows out of a browser window, from its beginning until the drop target has said
/// where they are to go. Owns itself, since its window may close meanwhile. GUI thread.
class RowDrag : public QObject {
  Q_OBJECT

 public:
  /// Called once with the folder that the target told, raw bytes and not looked at; with an empty
  /// one when the drop was made outside this program and nobody told a folder. Not called when the
  /// drag was cancelled or ended over a window of this program.
  using Then = std::function<void(const std::string& folder)>;

  /// Begins in a later turn of the event loop, if the left button is still held then. `name`, raw
  /// bytes, is proposed to the target.
  static void Begin(const QPixmap& picture, std::string name, Then then);

  /// What is seen beside the pointer: icon and text, nothing around them, for the screen and the
  /// palette of `window`.
  [[nodiscard]] static QPixmap Picture(const QWidget& window, const QIcon& icon,
                                       const QString& text);

  ~RowDrag() override;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  RowDrag(std::string name, Then then);
  void Run(const QPixmap& picture);
  void Told(const std::string& folder);
  void Settle();

  const std::string name_;
  Then then_;  // empty once called
  std::unique_ptr<ExtractService> service_;
  std::string folder_;
  bool dropped_ = false;
  bool cancelled_ = false;
  bool overOwnWindow_ = false;
  bool released_ = false;
};

}  // namespace corvane
