#pragma once

#include <QMimeData>
#include <functional>
#include <string>

namespace corvane {

/// What a drag of rows offers: no contents, only ways for the drop target to tell the folder into
/// which they are to be downloaded. A target that found contents or URLs too would take those and
/// keep its folder to itself. GUI thread.
class DragData : public QMimeData {
  Q_OBJECT

 public:
  /// The format that marks a drag of rows; without contents.
  static const QString kRows;

  /// How a target tells its folder; what is empty is not offered.
  struct Ways {
    std::function<std::string()> property{};  ///< reads what it has left in the X property
    std::string name{};                       ///< what was proposed there
    QString service{};                        ///< the bus name of our extract service
    QString path{};                           ///< its object path
  };

  /// `told` gets the folder, raw bytes, when the property names one.
  DragData(Ways ways, std::function<void(const std::string& folder)> told);

  [[nodiscard]] QStringList formats() const override;

 protected:
  [[nodiscard]] QVariant retrieveData(const QString& format, QMetaType type) const override;

 private:
  [[nodiscard]] QByteArray AnswerDirectSave() const;

  const Ways ways_;
  const std::function<void(const std::string& folder)> told_;
};

}  // namespace corvane
