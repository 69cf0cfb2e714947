#pragma once

#include <QObject>
#include <QPointer>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "remote/UserQuestion.h"

class QDialog;

namespace corvane {

/// Puts the questions of sessions to the user. Sessions that ask the same share one window, which
/// stands over that of theirs where the user is, and one answer. A question is given up with the
/// window that it stands over, and goes when it is withdrawn. GUI thread.
class UserQuestions : public QObject {
  Q_OBJECT

 public:
  /// Asks over `window`, which is shown where it is hidden.
  static void Ask(QWidget* window, const std::shared_ptr<UserQuestion>& question);

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  struct Asker {
    QPointer<QWidget> window;
    std::shared_ptr<UserQuestion> question;
  };
  /// One window, and everybody who waits for its answer.
  struct Asked {
    std::vector<Asker> askers{};
    QPointer<QWidget> over{};
    QPointer<QDialog> box{};
    int shown = 0;  // how often; what an earlier box says does not count
    bool ticked = false;
    std::string entered{};
  };

  using QObject::QObject;
  static UserQuestions& TheOne();
  void Add(QWidget* window, const std::shared_ptr<UserQuestion>& question);
  void Show(Asked& asked, QWidget* window);
  void Follow(QWidget* window);
  void Give(const Asked* asked, int shown, int button);
  void Withdrawn(const UserQuestion* question);
  /// Gives up what windows asked that have gone.
  void Sweep();

  std::list<Asked> asked_;
};

}  // namespace corvane
