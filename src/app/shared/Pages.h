#pragma once

class QVBoxLayout;
class QWidget;

namespace corvane {

/// Gives `page`, which stands in place of a list, the list's ground and a column for its contents
/// in the middle. GUI thread.
[[nodiscard]] QVBoxLayout* LayOutPage(QWidget* page);

}  // namespace corvane
