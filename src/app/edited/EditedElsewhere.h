#pragma once

#include <memory>
#include <utility>

#include "app/edited/EditedFiles.h"
#include "app/shared/GuiThread.h"

namespace corvane {

template <typename Work, typename Finish>
void EditedFiles::Elsewhere(const Entry& entry, Work work, Finish then) {
  disk_.Add(
      [self = QPointer(this), id = entry.file.id, work = std::move(work), then = std::move(then)] {
        const auto result = std::make_shared<decltype(work())>(work());
        OnGuiThread([self, id, then, result] {
          Entry* const found = self.isNull() ? nullptr : self->EntryOf(id);
          if (found != nullptr) then(*found, *result);
        });
      });
}

}  // namespace corvane
