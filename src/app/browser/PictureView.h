#pragma once

#include <QImage>
#include <QWidget>
#include <string>

namespace corvane {

/// Shows a picture as large as the window lets it, and never larger than it is. GUI thread.
class PictureView : public QWidget {
  Q_OBJECT

 public:
  PictureView(QImage picture, QWidget* parent);

  /// A picture, and how many points it has.
  struct Read {
    QImage picture;  ///< made smaller where it is very large; null where it cannot be shown
    QSize size;
    bool tooLarge = false;
  };
  /// Any thread; takes memory within limits only, whatever the bytes say.
  [[nodiscard]] static Read From(const std::string& bytes);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const QImage picture_;
};

}  // namespace corvane
