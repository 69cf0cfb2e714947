#pragma once

#include <QString>
#include <Qt>
#include <functional>
#include <utility>
#include <vector>

class QMenu;
class QWidget;

namespace corvane {

/// Shows a hidden or minimised window, or activates it. Where a question stands over it, that one
/// gets the keyboard. GUI thread.
void BringForward(QWidget* window);
/// The question that has to be answered before the window can be used, or the window itself.
[[nodiscard]] QWidget* Usable(QWidget* window);

/// Ctrl+W closes `window`.
void AddCloseKey(QWidget* window);
/// So does Escape.
void AddCloseKeys(QWidget* window);

/// A window of its own that is never larger than its contents.
inline constexpr Qt::WindowFlags kFixedWindow =
    Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
    Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;

/// The row of buttons below a window that asks something: "Cancel", which hides `window`, and the
/// one that Enter presses, by text and object name.
[[nodiscard]] QWidget* AskingButtons(QWidget* window, const std::pair<QString, const char*>& accept,
                                     const std::function<void()>& accepted);

/// Puts one item per browser window but `except` behind the first `fixed` items of `menu`, in place
/// of what stood there.
void AddWindowItems(QMenu& menu, int fixed, const std::vector<QWidget*>& windows,
                    const QWidget* except);

}  // namespace corvane
