#include "ring.h"

#include <cadrova/cadrova.h>

#include <algorithm>

int RingSeconds() {
  return std::clamp(android::getSimCustIntFeature("calling.ring_seconds", 30), 5, 60);
}
