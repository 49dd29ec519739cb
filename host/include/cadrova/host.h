/// Any device, for a test: what the stand-ins for the parser core and the property store answer
/// from now on, in one process and as often as one likes.
///
///   ASSERT_EQ(cadrova::host::AnswerFromText("[COTA_X1]\nring.seconds = 25\n"), std::nullopt);
///   android::base::SetProperty("persist.sys.cota.carrier", "X1");
///   EXPECT_EQ(android::getCotaCustIntFeature("ring.seconds", 3), 25);
///
/// Region and carrier are system properties, set with `android::base::SetProperty`; SIM data is
/// handed over with `android::setSimCadrova`. Until one of these functions says otherwise, the core
/// answers from the customization file that the environment variable CADROVA_HOST_DATA names, or
/// else from the installed sample, read when it is first asked. If that file can't be read or holds
/// a mistake, asking ends the process with status 2 and the mistake on standard error. A mistake in
/// what is given here never does: it comes back, and the core answers as before.
///
/// Thread safety: call `AnswerFromFile`, `AnswerFromText` and `StartOver` between lookups, while no
/// other thread asks the library or calls one of them. The others, `setSimCadrova` and
/// `SetProperty` may run beside lookups and one another.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace cadrova::host {

/// What is wrong with a file or a text, and where.
struct Mistake {
  std::string file;    ///< As it was named; "<text>" for a text.
  int line = 0;        ///< From 1; 0 where the file can't be read to its end.
  int column = 0;      ///< From 1, in characters; 0 where the whole line or file is meant.
  std::string reason;  ///< One line, without the place.
};

/// "file:line:column: reason", as compilers say it, without a line or column that is 0.
inline std::string ToString(const Mistake& mistake) {
  std::string place = mistake.file + ':';
  for (const int number : {mistake.line, mistake.column}) {
    if (number != 0) place += std::to_string(number) + ':';
  }
  return place + ' ' + mistake.reason;
}

inline std::ostream& operator<<(std::ostream& stream, const Mistake& mistake) {
  return stream << ToString(mistake);
}

/// Answers from the customization file at `path`, a TOML file whose tables are maps. What was
/// handed over for the SIM stays in front of it. Returns the first mistake, or nothing where all is
/// well.
[[nodiscard]] std::optional<Mistake> AnswerFromFile(const std::string& path);

/// The same with `toml` as the contents of the file.
[[nodiscard]] std::optional<Mistake> AnswerFromText(const std::string& toml);

/// The kinds of value.
enum class Kind { kBool, kInt, kFloat, kString, kStringArray, kIntArray, kMapArray };

/// All that the core holds.
struct Inventory {
  /// Where something stands in the file, from 1, in lines and characters; 0 where it doesn't, as
  /// what was handed over for the SIM.
  struct Place {
    int line = 0;
    int column = 0;
  };
  struct Map {
    std::string name;
    Place place;  ///< Of its first mention.
  };
  struct Item {
    std::string map;
    std::string key;
    std::vector<Kind> kinds;  ///< As which it exists: one; an empty array is of every list kind.
    Place place;              ///< Of the last part of its key.
  };

  std::string file;         ///< The customization file, as it was named; "<text>" for a text.
  std::vector<Map> maps;    ///< Sorted by name; those that hold nothing among them.
  std::vector<Item> items;  ///< Sorted by map and key.
};

/// Lists what the core holds now, in the file and handed over for the SIM.
Inventory TakeInventory();

/// Forgets all that was handed over for the SIM.
void ForgetSim();

/// Forgets all properties that were set; the store reads the file that CADROVA_HOST_PROPS names
/// again, if it is set, when it is next asked.
void ForgetProperties();

/// Back to how the process began: nothing handed over, no property set, and the customization file
/// read when the core is next asked.
void StartOver();

}  // namespace cadrova::host
