#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace corvane {

/// The directories that a browser window has shown, as one goes back and forward between them. A
/// value; paths are raw bytes.
class History {
 public:
  /// The window has come to show `path`. Where Back or Forward leads there, that is the way it
  /// came, and true is returned.
  bool Visit(const std::string& path);

  /// Where one came from and went to; empty where there is nothing.
  [[nodiscard]] std::string Back() const;
  [[nodiscard]] std::string Forward() const;
  /// What Visit is to take for a step back or forward, once it comes.
  void ExpectBack() { expected_ = Back(), ahead_ = false; }
  void ExpectForward() { expected_ = Forward(), ahead_ = true; }

  /// Every directory once, the latest first.
  [[nodiscard]] std::vector<std::string> Recent() const;

 private:
  static constexpr std::size_t kMost = 50;

  std::vector<std::string> paths_;
  std::size_t at_ = 0;  // in paths_, where there is something
  std::string expected_;
  bool ahead_ = false;  // it lies forward: the same directory may lie both ways
};

}  // namespace corvane
