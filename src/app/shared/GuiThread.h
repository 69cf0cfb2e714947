#pragma once

#include <functional>

namespace corvane {

/// The one way from a working thread to the windows: `call` runs on the GUI thread in a later turn
/// of its event loop. Any thread; returns at once. `call` must hold weak handles of windows only
/// and test them when it runs. After the application object has gone nothing runs.
void OnGuiThread(std::function<void()> call);

}  // namespace corvane
