// The part of the test kit that a real libbase does not have.

#include "cadrova/host.h"

// A real libbase has no function that discards properties.
[[gnu::visibility("default")]] void cadrova::host::ClearProperties() {}
