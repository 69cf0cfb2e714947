#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "app/edited/EditedFiles.h"

namespace corvane {

struct EditedHost;

/// What the user is asked about edited files. Questions stand over one window. GUI thread.
class EditedQuestions {
 public:
  /// All outlive it.
  EditedQuestions(EditedFiles& files, EditedHost& host, QWidget& window)
      : files_(files), host_(host), window_(window) {}

  /// Asks what becomes of a conflict, unless that is being asked.
  void AskOfConflict(std::int64_t id);
  /// Stops editing; what is not sent is asked about first.
  void Stop(const std::vector<std::int64_t>& ids);
  /// What is to be fetched.
  struct Amount {
    int files = 0;
    int unknown = 0;         ///< of them, whose size is not known
    std::int64_t bytes = 0;  ///< of the others
  };
  /// `go` follows where the user wants so much to be fetched; little is not asked about.
  void AskOfSize(const Amount& amount, const std::function<void()>& go);

 private:
  void Ask(const EditedFile& file, const std::string& program);
  void AskOfGone(const EditedFile& file);
  void Compare(std::int64_t id, const std::string& program);

  EditedFiles& files_;
  EditedHost& host_;
  QWidget& window_;
  std::set<std::int64_t> asking_;
};

}  // namespace corvane
