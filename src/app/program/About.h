#pragma once

#include <QSvgRenderer>
#include <QWidget>

namespace corvane {

/// The picture of the About window, drawn for the palette's lightness. GUI thread.
class AboutView : public QWidget {
  Q_OBJECT

 public:
  explicit AboutView(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void LoadPicture();

  QSvgRenderer picture_;
  QSvgRenderer mark_;
};

/// Says what the program is, and its version. Closing hides the window. GUI thread.
class About : public QWidget {
  Q_OBJECT

 public:
  explicit About(QWidget* parent = nullptr);
};

}  // namespace corvane
