// Functions of the fake core that no other core has: read a customization file, and list its
// contents.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::host {
struct LoadedFile;
struct TomlNode;
}  // namespace cadrova::host

namespace cadrova::tools {

// Whether the core is the fake one.
bool HasFakeCore();

// The file that the environment variable CADROVA_HOST_DATA names, if any. None if the core is not
// the fake one, which does not read it.
std::optional<std::string> DefaultDataFile();

// The same, or a Failure if there is none.
std::string RequireDefaultDataFile();

// Says on standard error that the installed sample is used, if the fake core uses it by default.
void WarnOfSample();

// A customization file that is read once, as it may be a pipe, and used several times.
class DataFile {
 public:
  // "-" is standard input. Throws a Failure if the core is not the fake one.
  explicit DataFile(const std::string& path);

  // As the file is called in messages.
  const std::string& name() const { return name_; }

  // The errors in the file. If it can't be read, the only one has no line.
  const std::vector<host::Error>& errors() const { return errors_; }
  bool has_syntax_error() const { return has_syntax_error_; }

  // Makes the core use the file, in constant time. If there are errors, throws a Failure with the
  // first one and the number of the others.
  void Use() const;

 private:
  std::string name_;
  std::shared_ptr<host::LoadedFile> data_;  // NULL if there are errors
  std::vector<host::Error> errors_;
  bool has_syntax_error_ = false;
};

// Both throw a Failure if the core is not the fake one. It ends with `advice`.
host::Contents ListContents(const std::string& advice = "only the fake core can");
std::vector<std::string> ListMapNames(const std::string& advice = "only the fake core can");

// The place of the item in the file, or line 0 if it has none.
host::Place PlaceOf(const host::Contents& contents, const std::string& map, const std::string& key);

// A place as "data/old.toml:12" or, without the folder, as "old.toml:12". Empty for line 0.
std::string LocationText(const std::string& file, host::Place place);
std::string ShortLocationText(const std::string& file, host::Place place);

// The kinds as which the core finds a SIM item that a program has set to `text`. The core must be
// the fake one; discards all SIM items that are set.
std::vector<host::Kind> KindsOfSimItem(const std::string& text);

// The TOML document at `path`, which is a `what`. Throws a Failure if it has an error or can't be
// read, or if the core is not the fake one.
host::TomlNode ReadToml(const std::string& path, const std::string& what);

}  // namespace cadrova::tools
