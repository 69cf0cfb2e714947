#pragma once

#include <array>

#include "net/NLEndpoint.h"
#include "net/NLException.h"

namespace corvane {

/// A loopback port where a connect hangs, for its queue is full.
class FullPort {
 public:
  FullPort() {
    listener_.bind(NLAddress("127.0.0.1", 0));
    listener_.listen(0);
    for (NLEndpoint& filler : fillers_) {
      filler.setNonBlock(true);
      try {
        filler.connect(listener_.localAddress());
      } catch (const NLException&) {
        // Under way.
      }
    }
  }
  [[nodiscard]] const NLAddress& Address() const { return listener_.localAddress(); }

 private:
  NLEndpoint listener_{NLEndpoint::stream};
  std::array<NLEndpoint, 2> fillers_{NLEndpoint(NLEndpoint::stream),
                                     NLEndpoint(NLEndpoint::stream)};
};

}  // namespace corvane
