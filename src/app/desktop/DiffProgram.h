#pragma once

#include <string>

class QWidget;

namespace corvane {

/// The program of this desktop that shows in what two files differ.
class DiffProgram {
 public:
  /// The first one that is installed; "" where none is. Any thread; looks at the disk.
  [[nodiscard]] static std::string Find();
  /// Starts it; paths are raw bytes. GUI thread. An alert over `window` says where it does not
  /// start.
  static void Show(QWidget* window, const std::string& program, const std::string& one,
                   const std::string& other);
};

}  // namespace corvane
