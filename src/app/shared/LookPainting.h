#pragma once

class QPainter;
class QRect;
class QStyleOption;
class QStyleOptionButton;
class QStyleOptionComboBox;
class QStyleOptionHeader;
class QStyleOptionProgressBar;
class QStyleOptionToolButton;
class QWidget;

namespace corvane::look {

/// The shapes of LookStyle, drawn on whole pixels. What a control is doing (hovered, pressed, with
/// the focus, unusable) stands in the option's state.

void DrawButton(QPainter& painter, const QStyleOptionButton& option, bool primary);
/// The text of a button, behind its symbol where it has one.
void DrawButtonLabel(QPainter& painter, const QStyleOptionButton& option, bool primary);
/// The text of a tool button behind its symbol.
void DrawToolLabel(QPainter& painter, const QStyleOptionToolButton& option);
void DrawToolButton(QPainter& painter, const QStyleOption& option);
void DrawField(QPainter& painter, const QStyleOption& option);
void DrawCheckBox(QPainter& painter, const QStyleOption& option);
void DrawRadioButton(QPainter& painter, const QStyleOption& option);
void DrawFocusRing(QPainter& painter, const QStyleOption& option);
void DrawComboBox(QPainter& painter, const QStyleOptionComboBox& option);
void DrawHeaderSection(QPainter& painter, const QStyleOption& option);
/// The label and, beside it, the arrow of the sorting.
void DrawHeaderLabel(QPainter& painter, const QStyleOptionHeader& option);
void DrawProgressBar(QPainter& painter, const QStyleOptionProgressBar& option);

}  // namespace corvane::look
