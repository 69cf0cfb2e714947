#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "app/shared/EntriesHost.h"

namespace corvane {

class MWListItem;
class MWindow;
struct BrowserHost;

/// Opens the windows about a browser window's entries, and is what they need of it. GUI thread.
class EntryWindows : public QObject, public EntriesHost {
  Q_OBJECT

 public:
  /// `window` owns this object.
  EntryWindows(BrowserHost& app, MWindow& window);

  /// Of what is selected but "." and "..".
  void ShowProperties();
  /// Below the directory shown.
  void ShowFind();
  /// The connection has told whether it sets times.
  void SetSetsTimes(bool sets) { setsTimes_ = sets; }

  [[nodiscard]] const Site& Server() const override;
  [[nodiscard]] QString TitleOf(const QString& place) const override;
  [[nodiscard]] EntryTexts TextsOf(const RemoteEntry& entry) const override;
  [[nodiscard]] bool SetsTimes() const override { return setsTimes_; }
  [[nodiscard]] std::shared_ptr<MThread> Walk(const WalkOrder& order,
                                              std::shared_ptr<WalkUi> ui) override;
  void LookAt(const std::string& directory, const std::vector<RemoteEntry>& entries) override;
  void Show(const std::string& directory, const std::string& name) override;
  void Download(const std::vector<FoundEntry>& entries) override;
  void Delete(QWidget* window, const std::vector<FoundEntry>& entries) override;
  void CopyAddresses(const std::vector<FoundEntry>& entries) override;
  void WhenGone(QObject* context,
                std::function<void(const std::string&, const std::string&)> gone) override;

 private:
  BrowserHost& app_;
  MWindow& window_;
  bool setsTimes_ = false;
};

}  // namespace corvane
