// What only the stand-in core can do: answer from a file of ours, and list what it holds.
#pragma once

#include <optional>
#include <string>

#include "cadrova/host.h"

// Answers from the file, or returns its first mistake.
std::optional<cadrova::host::Mistake> TryFile(const std::string& path);

// Answers from the file; or the command fails, as the core does where it finds a mistake.
void AnswerFromFile(const std::string& path);

// A customization file that is read once, as it may be a pipe, and answered from many times.
class DataFile {
 public:
  explicit DataFile(const std::string& path);
  void Answer() const;

 private:
  std::string path_, contents_;
};

// Whether the core lists what it holds.
bool CanList();

// What it holds, or the command fails.
cadrova::host::Inventory List();
