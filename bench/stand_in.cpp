// The carrier-and-region int lookup over the stand-in core and store.

#include <android-base/properties.h>

#include "cadrova/cadrova.h"
#include "question.h"

int main(int argc, char** argv) {
  android::base::SetProperty("ro.orvel.region", "EU");
  android::base::SetProperty("persist.sys.cota.carrier", "X1");
  return bench::AskAll(argc, argv, [](const std::string& key) {
    return android::getCotaRegionCustIntFeature(key, -1);
  });
}
