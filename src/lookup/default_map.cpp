// Default-map lookups: read the default map once. Intentionally, they read no property, make no
// existence test and print no line.

#include "cadrova/cadrova.h"

namespace android {

bool getCustBooleanFeature(std::string key, bool default_value) {
  return getBooleanFromRust("DEFAULT", key, default_value);
}

int getCustIntFeature(std::string key, int default_value) {
  return getIntFromRust("DEFAULT", key, default_value);
}

float getCustFloatFeature(std::string key, float default_value) {
  return getFloatFromRust("DEFAULT", key, default_value);
}

std::string getCustStringFeature(std::string key, std::string default_value) {
  return getStringFromRust("DEFAULT", key, default_value);
}

std::vector<std::string> getCustStringArrayFeature(std::string key) {
  return getStringArrayFromRust("DEFAULT", key);
}

std::vector<int> getCustIntArrayFeature(std::string key) {
  return getIntArrayFromRust("DEFAULT", key);
}

std::vector<std::pair<std::string, std::string>> getCustMapArrayFeature(std::string key) {
  return getMapFromRust("DEFAULT", key);
}

}  // namespace android
