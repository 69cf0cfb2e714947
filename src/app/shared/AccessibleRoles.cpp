#include "app/shared/AccessibleRoles.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>
#include <algorithm>
#include <array>

namespace corvane {
namespace {

struct Kind {
  QLatin1String name;
  QAccessible::Role role;
};

constexpr std::array kKinds{
    Kind{QLatin1String("corvane::About"), QAccessible::Dialog},
    Kind{QLatin1String("corvane::AboutView"), QAccessible::StaticText},
    Kind{QLatin1String("corvane::BrowserToolBar"), QAccessible::ToolBar},
    Kind{QLatin1String("corvane::BusySign"), QAccessible::Animation},
    Kind{QLatin1String("corvane::MyStatusBar"), QAccessible::ProgressBar},
    Kind{QLatin1String("corvane::NewDir"), QAccessible::Dialog},
    Kind{QLatin1String("corvane::PrefWindow"), QAccessible::Dialog},
    Kind{QLatin1String("corvane::RenameWin"), QAccessible::Dialog},
    Kind{QLatin1String("corvane::ShortCutEditWindow"), QAccessible::Dialog},
    Kind{QLatin1String("corvane::StatusLine"), QAccessible::StatusBar},
    Kind{QLatin1String("corvane::Strip"), QAccessible::AlertMessage},
    Kind{QLatin1String("corvane::TransferBar"), QAccessible::ToolBar},
};

/// A bar whose property "percent" is its value.
class Progress : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit Progress(QWidget* bar) : QAccessibleWidget(bar, QAccessible::ProgressBar) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  [[nodiscard]] QVariant currentValue() const override { return object()->property("percent"); }
  void setCurrentValue(const QVariant& /*value*/) override {}
  [[nodiscard]] QVariant minimumValue() const override { return 0; }
  [[nodiscard]] QVariant maximumValue() const override { return 100; }
  [[nodiscard]] QVariant minimumStepSize() const override { return 1; }
};

// Asked for the class of an object, then for each class below it; QWidget is the last of them that
// has something to say.
QAccessibleInterface* Make(const QString& name, QObject* object) {
  auto* widget = qobject_cast<QWidget*>(object);
  if (widget == nullptr) return nullptr;
  const auto* kind = std::ranges::find(kKinds, name, &Kind::name);
  if (kind != kKinds.end()) {
    if (kind->role == QAccessible::ProgressBar) return new Progress(widget);
    return new QAccessibleWidget(widget, kind->role);
  }
  const bool window = name == QLatin1String("QWidget") && widget->windowType() == Qt::Window;
  return window ? new QAccessibleWidget(widget, QAccessible::Window) : nullptr;
}

}  // namespace

void InstallAccessibleRoles() {
  QAccessible::installFactory(Make);
}

}  // namespace corvane
