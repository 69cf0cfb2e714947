#include "app/shared/LookStyle.h"

#include <QAbstractItemView>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>

#include "app/shared/LookPainting.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr const char* kPrimary = "primary";

bool IsPrimary(const QWidget* widget) {
  return widget != nullptr && widget->property(kPrimary).toBool();
}

// The focus of a view is drawn by what paints its rows.
bool InView(const QWidget* widget) {
  return qobject_cast<const QAbstractItemView*>(widget) != nullptr;
}

}  // namespace

LookStyle::LookStyle() : QProxyStyle(QStyleFactory::create("fusion")) {}

// Some desktops leave the hints of fields in the colour of another theme.
void LookStyle::polish(QPalette& palette) {
  QProxyStyle::polish(palette);
  constexpr int kHint = 60;
  const QColor hint = Mixed(palette.color(QPalette::Text), palette.color(QPalette::Base), kHint);
  palette.setColor(QPalette::PlaceholderText, hint);
}

void LookStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                              QPainter* painter, const QWidget* widget) const {
  switch (element) {
    case PE_PanelButtonTool: return look::DrawToolButton(*painter, *option);
    case PE_PanelButtonCommand:
      if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
        return look::DrawButton(*painter, *button, IsPrimary(widget));
      }
      break;
    case PE_PanelLineEdit:
    case PE_FrameLineEdit:
      if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
          frame != nullptr && frame->lineWidth > 0) {
        return look::DrawField(*painter, *option);
      }
      break;
    case PE_IndicatorCheckBox: return look::DrawCheckBox(*painter, *option);
    case PE_IndicatorRadioButton: return look::DrawRadioButton(*painter, *option);
    case PE_FrameFocusRect:
      if (!InView(widget) && option->state.testFlag(State_KeyboardFocusChange)) {
        look::DrawFocusRing(*painter, *option);
      }
      return;
    case PE_FrameDefaultButton:
    // Stands beside the label.
    case PE_IndicatorHeaderArrow: return;
    default: break;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void LookStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
  switch (element) {
    case CE_PushButtonLabel:
      if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
          button != nullptr && !button->features.testFlag(QStyleOptionButton::HasMenu)) {
        return look::DrawButtonLabel(*painter, *button, IsPrimary(widget));
      }
      break;
    case CE_ToolButtonLabel:
      if (const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
          button != nullptr && button->toolButtonStyle == Qt::ToolButtonTextBesideIcon) {
        return look::DrawToolLabel(*painter, *button);
      }
      break;
    case CE_HeaderSection:
    case CE_HeaderEmptyArea: return look::DrawHeaderSection(*painter, *option);
    case CE_HeaderLabel:
      if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option)) {
        return look::DrawHeaderLabel(*painter, *header);
      }
      break;
    case CE_ProgressBar:
      if (const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option)) {
        return look::DrawProgressBar(*painter, *bar);
      }
      break;
    default: break;
  }
  QProxyStyle::drawControl(element, option, painter, widget);
}

void LookStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const {
  if (control == CC_ComboBox) {
    if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
      return look::DrawComboBox(*painter, *box);
    }
  }
  QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QSize LookStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                  const QWidget* widget) const {
  QSize whole = QProxyStyle::sizeFromContents(type, option, size, widget);
  switch (type) {
    case CT_PushButton:
      return {std::max(whole.width() + 12, kLeastButtonWidth),
              std::max(whole.height(), kControlHeight)};
    case CT_LineEdit:
    case CT_ComboBox:
    case CT_SpinBox: return {whole.width(), std::max(whole.height(), kControlHeight)};
    case CT_ToolButton:
      if (const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
          button != nullptr && button->toolButtonStyle == Qt::ToolButtonTextBesideIcon) {
        whole.rwidth() += 6;  // the symbol stands further from the text, and from the edge
      }
      return whole.expandedTo({kControlHeight, kControlHeight});
    case CT_HeaderSection: return {whole.width(), std::max(whole.height(), kRowHeight)};
    default: return whole;
  }
}

int LookStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                           const QWidget* widget) const {
  switch (metric) {
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing: return 8;
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin: return 16;
    case PM_HeaderMargin: return 8;
    case PM_HeaderDefaultSectionSizeVertical: return kRowHeight;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical: return 0;
    default: return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

int LookStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* data) const {
  switch (hint) {
    case SH_EtchDisabledText:
    case SH_ComboBox_Popup: return 0;
    case SH_Header_ArrowAlignment: return int{Qt::AlignVCenter};
    default: return QProxyStyle::styleHint(hint, option, widget, data);
  }
}

void SetPrimary(QPushButton& button) {
  button.setProperty(kPrimary, true);
  button.setDefault(true);
}

}  // namespace corvane
