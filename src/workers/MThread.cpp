#include "workers/MThread.h"

#include <utility>

#include "kit/Background.h"

namespace corvane {

MThread::MThread(std::string name) : name_(std::move(name)) {}

bool MThread::Run() {
  return Background::Start(name_, [self = shared_from_this()] { self->Execute(); });
}

void MThread::Cancel() {
  cancelled_ = true;
}

}  // namespace corvane
