#pragma once

#include <QWidget>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/shared/EntriesHost.h"

class QDateTimeEdit;
class QGridLayout;
class QHBoxLayout;
class QLabel;

namespace corvane {

class ElidedLabel;
class LinkButton;

/// What is known of entries: what they are called and where they stand, their size, time, owner and
/// group; of several what they have in common. GUI thread.
class EntryFacts : public QWidget {
  Q_OBJECT

 public:
  /// `host` is asked while this is made only.
  EntryFacts(const EntriesHost& host, const std::string& directory,
             const std::vector<RemoteEntry>& entries, QWidget* parent);

  /// The time that the user wants, in seconds since 1970; nothing where none was entered.
  [[nodiscard]] std::optional<std::int64_t> Time() const;
  /// What directories hold has been counted so far, or at all where it is `over`. Not all of it
  /// could be where `note` says why.
  void ShowCounted(const WalkProgress& counted, bool over, const QString& note = {});

 Q_SIGNALS:
  void TimeChanged();
  /// Directories are to be counted, or no longer.
  void CountPressed();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QLayout* MakeHead(const EntriesHost& host, const std::string& directory,
                                  const std::vector<RemoteEntry>& entries);
  void AddSize(const std::vector<RemoteEntry>& entries);
  void AddDate(bool settable, const std::vector<RemoteEntry>& entries);
  void AddText(const QString& title, const char* name, const std::string& encoding,
               const std::vector<RemoteEntry>& entries, std::string RemoteEntry::*field);
  QHBoxLayout* AddRow(const QString& title, QWidget* value);
  void EditTime();

  QWidget* picture_;
  const char* symbol_ = nullptr;
  QGridLayout* rows_;
  ElidedLabel* size_;
  LinkButton* count_;
  ElidedLabel* date_;
  LinkButton* set_;
  QDateTimeEdit* time_;
  bool timed_ = false;            // the user has entered a time
  std::int64_t bytes_ = 0;        // of the files that were chosen
  std::int64_t files_ = 0;        // so many
  std::int64_t directories_ = 0;  // chosen ones
};

}  // namespace corvane
