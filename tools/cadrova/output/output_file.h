// Files that options name for output.
#pragma once

#include <string>
#include <vector>

namespace cadrova::tools {

// Throws a Failure if the file that `option` names is one of the files `inputs`, whatever their
// names. Terminals and other character devices may be both.
void RefuseInputs(const std::string& option, const std::string& path,
                  const std::vector<std::string>& inputs);

// A file that an option names, or standard output for "-".
class OutputFile {
 public:
  // Throws a Failure if the file is one of `inputs`.
  OutputFile(const std::string& option, const std::string& path,
             const std::vector<std::string>& inputs);

  // Throws a Failure. A regular file is replaced when the new one is complete, and keeps its
  // permissions. Other files, such as pipes, are written to.
  void Write(const std::string& contents) const;

 private:
  std::string option_, path_;
  std::vector<std::string> inputs_;
};

}  // namespace cadrova::tools
