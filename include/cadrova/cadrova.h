/// How is this device unit customized?
///
/// Customization data lies in named maps inside the parser core (`libcadrova_ffi`). Each function
/// here asks for one item of one value kind by its feature key and returns it as a
/// standard-library value. There is one function per value kind in each family:
///
///   kind         type                                                 missing item yields
///   Boolean      bool                                                 default_value
///   Int          int (signed 32-bit)                                  default_value
///   Float        float (32-bit IEEE)                                  default_value
///   String       std::string (bytes of no particular encoding)        default_value
///   StringArray  std::vector<std::string>                             an empty list
///   IntArray     std::vector<int>                                     an empty list
///   MapArray     std::vector<std::pair<std::string, std::string>>     an empty list
///
/// The library hands `default_value` to the core, which is to answer with it, or with no list,
/// where an item is missing. Whether an item of one kind exists as another, and all else about the
/// data, is the core's to say. MapArray pairs are (key, value), in the order of the data,
/// duplicates kept. A String ends before its first NUL byte.
///
/// Arguments and results are values: the caller owns what it passes and what it gets. Any string
/// may be empty and is passed to the core unchanged. There is no error result, and the library
/// throws nothing: a length that the standard library can't represent ends the process, and so does
/// memory that runs out. (A std::bad_alloc of `operator new` that the program does catch comes
/// through the library, which releases nothing on its way.)
///
/// Thread safety: any function may be called from any thread at any time. The library has no
/// state, takes no lock and needs no initialisation.
///
/// Callers, this library and the core must be built against the same C++ standard library.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// Marks what leaves the library; everything else stays inside.
#define CADROVA_EXPORT __attribute__((visibility("default")))

namespace android {

/// @name Typed bridge
///
/// The item under `key` in the map named `map`, read from the core once; where the map holds no
/// such item, the core answers with `default_value` or with no list.
/// @{
CADROVA_EXPORT bool getBooleanFromRust(std::string map, std::string key, bool default_value);
CADROVA_EXPORT int getIntFromRust(std::string map, std::string key, int default_value);
CADROVA_EXPORT float getFloatFromRust(std::string map, std::string key, float default_value);
CADROVA_EXPORT std::string getStringFromRust(std::string map, std::string key,
                                             std::string default_value);
CADROVA_EXPORT std::vector<std::string> getStringArrayFromRust(std::string map, std::string key);
CADROVA_EXPORT std::vector<int> getIntArrayFromRust(std::string map, std::string key);
CADROVA_EXPORT std::vector<std::pair<std::string, std::string>> getMapFromRust(std::string map,
                                                                               std::string key);
/// @}

/// @name Default-map lookups
///
/// The device's default customization: the item under `key` in the map "DEFAULT", whatever the
/// region, carrier or SIM. Reads the value once and prints nothing.
/// @{
CADROVA_EXPORT bool getCustBooleanFeature(std::string key, bool default_value);
CADROVA_EXPORT int getCustIntFeature(std::string key, int default_value);
CADROVA_EXPORT float getCustFloatFeature(std::string key, float default_value);
CADROVA_EXPORT std::string getCustStringFeature(std::string key, std::string default_value);
CADROVA_EXPORT std::vector<std::string> getCustStringArrayFeature(std::string key);
CADROVA_EXPORT std::vector<int> getCustIntArrayFeature(std::string key);
CADROVA_EXPORT std::vector<std::pair<std::string, std::string>> getCustMapArrayFeature(
    std::string key);
/// @}

/// @name Region lookups
///
/// What holds for the device's region, named by the system property `ro.orvel.region`: the item
/// under `key` in the map of that name, or else in "DEFAULT".
///
/// These and all lookups below read the properties afresh, and print one line to standard output
/// that says which map answered. Scalars and strings are read, printed, and read again for the
/// result; lists are announced, then read once.
/// @{
CADROVA_EXPORT bool getRegionCustBooleanFeature(std::string key, bool default_value);
CADROVA_EXPORT int getRegionCustIntFeature(std::string key, int default_value);
CADROVA_EXPORT float getRegionCustFloatFeature(std::string key, float default_value);
CADROVA_EXPORT std::string getRegionCustStringFeature(std::string key, std::string default_value);
CADROVA_EXPORT std::vector<std::string> getRegionCustStringArrayFeature(std::string key);
CADROVA_EXPORT std::vector<int> getRegionCustIntArrayFeature(std::string key);
CADROVA_EXPORT std::vector<std::pair<std::string, std::string>> getRegionCustMapArrayFeature(
    std::string key);
/// @}

/// @name Carrier lookups
///
/// What holds for the device's carrier, named by the system property `persist.sys.cota.carrier`:
/// the item under `key` in the map COTA_<carrier>, or else in "DEFAULT".
/// @{
CADROVA_EXPORT bool getCotaCustBooleanFeature(std::string key, bool default_value);
CADROVA_EXPORT int getCotaCustIntFeature(std::string key, int default_value);
CADROVA_EXPORT float getCotaCustFloatFeature(std::string key, float default_value);
CADROVA_EXPORT std::string getCotaCustStringFeature(std::string key, std::string default_value);
CADROVA_EXPORT std::vector<std::string> getCotaCustStringArrayFeature(std::string key);
CADROVA_EXPORT std::vector<int> getCotaCustIntArrayFeature(std::string key);
CADROVA_EXPORT std::vector<std::pair<std::string, std::string>> getCotaCustMapArrayFeature(
    std::string key);
/// @}

/// @name Carrier-and-region lookups
///
/// The item under `key` in the most specific map that holds one: COTA_<carrier>_<region>,
/// COTA_<carrier>, <region>, or else "DEFAULT".
/// @{
CADROVA_EXPORT bool getCotaRegionCustBooleanFeature(std::string key, bool default_value);
CADROVA_EXPORT int getCotaRegionCustIntFeature(std::string key, int default_value);
CADROVA_EXPORT float getCotaRegionCustFloatFeature(std::string key, float default_value);
CADROVA_EXPORT std::string getCotaRegionCustStringFeature(std::string key,
                                                          std::string default_value);
CADROVA_EXPORT std::vector<std::string> getCotaRegionCustStringArrayFeature(std::string key);
CADROVA_EXPORT std::vector<int> getCotaRegionCustIntArrayFeature(std::string key);
CADROVA_EXPORT std::vector<std::pair<std::string, std::string>> getCotaRegionCustMapArrayFeature(
    std::string key);
/// @}

/// @name SIM lookups
///
/// The item under `key` in SIM_<carrier>, or else in "SIM_DEFAULT", or else what the
/// carrier-and-region lookup of the same kind says. The String lookup's default is the empty
/// string. There is no lookup for floats.
/// @{
CADROVA_EXPORT bool getSimCustBooleanFeature(std::string key, bool default_value);
CADROVA_EXPORT int getSimCustIntFeature(std::string key, int default_value);
CADROVA_EXPORT std::string getSimCustStringFeature(std::string key);
CADROVA_EXPORT std::vector<std::string> getSimCustStringArrayFeature(std::string key);
CADROVA_EXPORT std::vector<int> getSimCustIntArrayFeature(std::string key);
CADROVA_EXPORT std::vector<std::pair<std::string, std::string>> getSimCustMapArrayFeature(
    std::string key);
/// @}

/// Hands two strings of SIM customization to the core, once under "SIM_DEFAULT" and once under the
/// carrier code. What they mean is the core's business; nothing is printed.
CADROVA_EXPORT void setSimCadrova(std::string first, std::string second);

}  // namespace android

#undef CADROVA_EXPORT
