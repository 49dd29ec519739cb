/// How is this device unit customized?
///
/// The parser core (`libcadrova_ffi`) contains the customization data, in named maps of items. Each
/// function here returns the value of one item as a standard-library value. Each family has one
/// function per kind of value:
///
///   kind         type                                                 if the item is missing
///   Boolean      bool                                                 default_value
///   Int          int (signed 32-bit)                                  default_value
///   Float        float (32-bit IEEE)                                  default_value
///   String       std::string (bytes of no particular encoding)        default_value
///   StringArray  std::vector<std::string>                             an empty list
///   IntArray     std::vector<int>                                     an empty list
///   MapArray     std::vector<std::pair<std::string, std::string>>     an empty list
///
/// The library passes `default_value` to the core, which returns it if the item is missing. The
/// core also decides everything else about the data, for example whether an item of one kind exists
/// as another kind. MapArray pairs are (key, value), in the order of the data, with duplicates. A
/// String ends before its first NUL byte.
///
/// Arguments and results are values, which the caller owns. Any string may be empty; the core gets
/// it unchanged. No function reports an error or throws: the process ends if memory runs out, or if
/// a length is greater than the standard library can represent. (If `operator new` throws
/// std::bad_alloc and the program catches it, the exception passes through the library, which then
/// releases no memory.)
///
/// Thread safety: any function may be called from any thread at any time. The library has no state,
/// takes no lock and needs no initialisation.
///
/// Callers, this library and the core must be built against the same C++ standard library.
#pragma once

#include <string>
#include <utility>
#include <vector>

// libstdc++ has other types with _GLIBCXX_DEBUG, and with _GLIBCXX_USE_CXX11_ABI=0. If the library
// is built so, its CMake targets and packages define CADROVA_GLIBCXX_DEBUG or
// CADROVA_GLIBCXX_USE_CXX11_ABI_0.
#ifdef __GLIBCXX__
#if defined(_GLIBCXX_DEBUG) != defined(CADROVA_GLIBCXX_DEBUG)
#error _GLIBCXX_DEBUG must be set for this file and for the build of cadrova, or for neither; \
the CMake targets and pkg-config packages of cadrova say how it is built
#endif
#if (_GLIBCXX_USE_CXX11_ABI == 0) != defined(CADROVA_GLIBCXX_USE_CXX11_ABI_0)
#error _GLIBCXX_USE_CXX11_ABI=0 must be set for this file and for the build of cadrova, or for \
neither; the CMake targets and pkg-config packages of cadrova say how it is built
#endif
#endif

/// Marks a function that the library exports. It exports nothing else.
#define CADROVA_EXPORT __attribute__((visibility("default")))

namespace android {

/// @name Typed bridge
///
/// Each function reads the item under `key` in the map named `map` from the core once. If the map
/// contains no such item, the core returns `default_value` or no list.
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
/// The device's default customization: the item under `key` in the map "DEFAULT", for every region,
/// carrier and SIM. Each function reads the value once and prints nothing.
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
/// The customization for the device's region. The system property `ro.orvel.region` is the region
/// code. The item under `key` comes from the map with that name, or else from "DEFAULT".
///
/// Region lookups and all lookups below read the properties in each call. They print one line to
/// standard output, which says which map the value comes from. For a scalar or a string, they read
/// the value, print it, and read it again for the result. For a list, they print the line, then
/// read the value once.
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
/// The customization for the device's carrier. The system property `persist.sys.cota.carrier` is
/// the carrier code. The item under `key` comes from the map COTA_<carrier>, or else from
/// "DEFAULT".
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
/// The item under `key` comes from the first of these maps that contains it:
/// COTA_<carrier>_<region>, COTA_<carrier>, <region>; or else from "DEFAULT".
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
/// The item under `key` comes from SIM_<carrier>, or else from "SIM_DEFAULT", or else from the
/// carrier-and-region lookup of the same kind. The default of the String lookup is the empty
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

/// Passes two strings of SIM customization data to the core, first under the name "SIM_DEFAULT",
/// then under the carrier code. The core decides what they mean. Prints nothing.
CADROVA_EXPORT void setSimCadrova(std::string first, std::string second);

}  // namespace android

#undef CADROVA_EXPORT
