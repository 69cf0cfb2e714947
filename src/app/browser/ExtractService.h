#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <string>

namespace corvane {

/// The object on the session bus that a file manager calls with the folder into which the dragged
/// rows are to go. It is there as long as this object lives, under a path that cannot be guessed.
/// GUI thread.
class ExtractService : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.ark.DndExtract")

 public:
  /// `told` gets the folder, raw bytes; it is an absolute path and not looked at.
  ExtractService(const QDBusConnection& bus, std::function<void(const std::string& folder)> told);

  /// The name and the path of the object; the name is empty where there is no bus.
  [[nodiscard]] QString Service() const;
  [[nodiscard]] const QString& Path() const { return path_; }

 public Q_SLOTS:
  /// What the file manager calls.
  Q_SCRIPTABLE void extractSelectedFilesTo(const QString& folder);

 private:
  QDBusConnection bus_;
  const QString path_;
  const std::function<void(const std::string& folder)> told_;
  bool registered_;
};

}  // namespace corvane
