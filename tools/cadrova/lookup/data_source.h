// What only the fake core can do: read a customization file, and list what it contains.
#pragma once

#include <string>
#include <vector>

#include "cadrova/host.h"

namespace cadrova::tools {

// Makes the core use the file; returns the errors in it. Throws a Failure if the core is another.
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

// Whether the core lists its contents.
bool CanListContents();

// Throws a Failure if it can't.
host::Contents ListContents();

}  // namespace cadrova::tools
