#include "app/browser/BrowserToolBar.h"

#include <QHBoxLayout>

#include "app/browser/BrowserCommands.h"
#include "app/browser/PathField.h"
#include "app/shared/IconButton.h"
#include "kit/Message.h"

namespace corvane {

BrowserToolBar::BrowserToolBar(QWidget* parent)
    : QWidget(parent),
      back_(new IconButton("back", {}, this)),
      forward_(new IconButton("forward", {}, this)),
      up_(new IconButton("up", {}, this)),
      home_(new IconButton("home", {}, this)),
      refresh_(new IconButton("refresh", {}, this)),
      stop_(new IconButton("close", {}, this)),
      path_(new PathField(this)),
      filter_(new IconButton("filter", {}, this)) {
  constexpr int kMargin = 8;
  filter_->setCheckable(true);
  stop_->hide();
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->setSpacing(0);
  for (IconButton* button : {back_, forward_, up_, home_, refresh_, stop_}) {
    layout->addWidget(button);
  }
  layout->addSpacing(kMargin);
  layout->addWidget(path_, 1);
  layout->addSpacing(kMargin);
  layout->addWidget(filter_);
}

void BrowserToolBar::Follow(const BrowserCommands& commands) {
  back_->Follow(commands.Action("BACK"_what));
  forward_->Follow(commands.Action("FRWD"_what));
  up_->Follow(commands.Action("PCHN"_what, ".."));
  home_->Follow(commands.Action("HOME"_what));
  refresh_->Follow(commands.Action("PCHN"_what, "."));
  stop_->Follow(commands.Action("STOP"_what));
  filter_->Follow(commands.Action("FLTR"_what));
}

void BrowserToolBar::SetBusy(bool busy) {
  stop_->setVisible(busy);
  refresh_->setVisible(!busy);
}

void BrowserToolBar::SetFilterShown(bool shown) {
  filter_->setChecked(shown);
}

}  // namespace corvane
