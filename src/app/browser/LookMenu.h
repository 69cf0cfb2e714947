#pragma once

class QMenu;

namespace corvane {

class DirListView;

/// A new menu in which the user chooses what a listing shows and by what it is ordered; the caller
/// owns it.
[[nodiscard]] QMenu* MakeLookMenu(DirListView& view);

}  // namespace corvane
