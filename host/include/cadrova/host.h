/// The test kit: sets the data of the fake parser core and the codes in the property store. A test
/// can switch to another device at any time.
///
///   cadrova::host::Reset();
///   ASSERT_TRUE(cadrova::host::LoadText("[COTA_X1]\nring.seconds = 25\n").empty());
///   cadrova::host::SetDevice("EU", "X1");
///   EXPECT_EQ(android::getCotaCustIntFeature("ring.seconds", 3), 25);
///
/// `android::setSimCadrova` sets SIM data. `android::base::SetProperty` sets a system property.
///
/// If a program loads no data, the core loads the default file at the first call that needs data:
/// the file that the environment variable CADROVA_HOST_DATA names, or else the installed sample. If
/// the default file can't be read or has an error, the process ends with status 2, and standard
/// error says why. `LoadFile` and `LoadText` return errors instead, and do not change the data.
///
/// Thread safety: call `LoadFile`, `LoadText`, `Set` and `Reset` only while no other thread makes a
/// lookup, forks or calls a function of the test kit. All other functions may run at the same time
/// as lookups, and as each other. A child of `fork` may make lookups and call all functions, even
/// if the process had several threads.
///
/// If cadrova is built over a real libbase, instead of the fake property store:
/// - `ClearProperties` does nothing, and `Reset` does not change properties. A test that depends on
///   the codes must set them with `SetDevice`.
/// - CADROVA_HOST_PROPS has no effect.
/// - Debian's libbase does not lock its properties. Call `SetDevice` and
///   `android::base::SetProperty` only while no other thread makes a lookup or calls a function of
///   the test kit.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "cadrova/cadrova.h"  // rejects callers with other types of the standard library
#include "cadrova/value.h"

namespace cadrova::host {

/// A place in the customization file: line and column, both from 1, the column in characters.
/// 0 means that there is none.
struct Place {
  int line = 0;
  int column = 0;
};

inline bool operator==(const Place& one, const Place& other) {
  return one.line == other.line && one.column == other.column;
}

/// What is wrong with a file or a text, and where.
struct Error {
  std::string file;              ///< As the caller named it; "<text>" for a text.
  Place place;                   ///< Line 0 if the file can't be read; column 0 for a whole line.
  std::string reason;            ///< One line, without file and place.
  std::optional<Place> related;  ///< For a duplicate: where the first one is.
};

inline bool operator==(const Error& one, const Error& other) {
  return one.file == other.file && one.place == other.place && one.reason == other.reason &&
         one.related == other.related;
}

/// "file:line:column: reason", as compilers print it, without a line or column that is 0.
inline std::string ToString(const Error& error) {
  std::string text = error.file + ':';
  for (const int number : {error.place.line, error.place.column}) {
    if (number != 0) text += std::to_string(number) + ':';
  }
  return text + ' ' + error.reason;
}

template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& stream,
                                             const Error& error) {
  return stream << ToString(error);
}

/// Replaces the data with the customization file at `path`, a TOML file whose tables are maps. SIM
/// data that was set remains, and takes precedence. Returns the errors in the file, in file order.
/// If there are any, the data does not change. A TOML syntax error is returned alone, because
/// nothing after it can be read.
[[nodiscard]] std::vector<Error> LoadFile(const std::string& path);

/// The same with `toml` as the contents of the file.
[[nodiscard]] std::vector<Error> LoadText(const std::string& toml);

/// Sets one item of the data, until the next load. It replaces the item of the file under that key,
/// whatever its kind. If no data is loaded yet, the default file is loaded first.
void Set(const std::string& map, const std::string& key, Value value);

/// Everything that the core contains.
struct Contents {
  struct Map {
    std::string name;
    Place place;  ///< Of the first line in the file that names it.
  };
  struct Item {
    std::string map;
    std::string key;
    std::vector<Kind> kinds;  ///< One, or the three list kinds for an empty TOML array.
    Place place;              ///< Of the last part of its key.
  };

  std::string file;         ///< The customization file, as it was named; "<text>" for a text.
  std::vector<Map> maps;    ///< Sorted by name, empty ones included.
  std::vector<Item> items;  ///< Sorted by map and key. Only items of the file have a place.
};

/// Lists what lookups find now: items of the file, items that `Set` has set, and SIM data.
Contents List();

/// Discards all SIM data that was set. A lookup that runs at the same time may find an item and
/// then read the default, because it tests and reads in separate calls of the core.
void ClearSim();

/// Sets the system properties that contain the region code and the carrier code. An empty code
/// means that the property is unset.
void SetDevice(const std::string& region, const std::string& carrier);

/// Discards all system properties that were set. At the next call the property store reads its file
/// again, if CADROVA_HOST_PROPS names one. Over a real libbase, this does nothing.
void ClearProperties();

/// Restores the state at the start of the process: no SIM data, no property set, no data loaded.
/// The default file is loaded again at the next call that needs data. Over a real libbase,
/// properties do not change.
void Reset();

}  // namespace cadrova::host
