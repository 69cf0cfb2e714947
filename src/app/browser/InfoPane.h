#pragma once

#include <QWidget>

class QGridLayout;
class QLabel;

namespace corvane {

class DirListView;
class ElidedLabel;

/// What is known of the rows that are selected: of one its facts, of several their count and their
/// sizes together. GUI thread.
class InfoPane : public QWidget {
  Q_OBJECT

 public:
  /// `view` outlives the pane.
  InfoPane(DirListView& view, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Fact {
    QLabel* title;
    ElidedLabel* value;
  };

  Fact AddFact(QGridLayout& layout, const char* name);
  static void ShowFact(const Fact& fact, const QString& title, const QString& value,
                       const QString& tip = {});
  void Update();
  void ShowNothing();
  void ShowOne(int row);
  void ShowSeveral();
  void ShowHead(const char* symbol, const QString& heading, const QString& text);

  DirListView& view_;
  QWidget* picture_;
  QLabel* heading_;
  ElidedLabel* text_;
  Fact size_;
  Fact date_;
  Fact permissions_;
  Fact owner_;
  Fact group_;
  const char* symbol_ = nullptr;
};

}  // namespace corvane
