// Functions of the fake core that no other core has: read a customization file, and list its
// contents.
#pragma once

#include <string>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::tools {

// Whether the core is the fake one.
bool HasFakeCore();

// Makes the core use the file, and returns the errors in it. Throws a Failure if the core is not
// the fake one.
std::vector<host::Error> TryLoadData(const std::string& path);

// Makes the core use the file, or throws its first error as a Failure.
void LoadData(const std::string& path);

// A customization file that is read once, as it may be a pipe, and used several times.
class DataFile {
 public:
  explicit DataFile(const std::string& path);
  void Load() const;

 private:
  std::string path_, text_;
};

// Throws a Failure if the core is not the fake one. It ends with `advice`.
host::Contents ListContents(const std::string& advice = "only the fake core can");

}  // namespace cadrova::tools
