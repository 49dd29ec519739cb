// The files of a test program. They are in a temporary folder, which is removed at exit.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

inline const struct TemporaryFolder {
  TemporaryFolder() {
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("can't make " + path);
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path); }

  std::string path = std::filesystem::temp_directory_path() / "cadrova.XXXXXX";
} kTemporaryFolder;

// Writes a file in that folder and returns its path.
inline std::string TemporaryFile(const std::string& name, const std::string& contents) {
  const std::string path = kTemporaryFolder.path + '/' + name;
  std::ofstream(path, std::ios::binary) << contents;
  return path;
}

inline std::string FileContents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

#ifdef CADROVA_SOURCES
// Compares `text` with a golden file, or writes that file if CADROVA_UPDATE_GOLDEN is set.
inline void ExpectGolden(const std::string& text, const std::string& name) {
  const std::string golden = CADROVA_SOURCES "/tests/golden/" + name;
  if (std::getenv("CADROVA_UPDATE_GOLDEN") != nullptr) std::ofstream(golden) << text;
  EXPECT_EQ(text, FileContents(golden)) << "if it is right, set CADROVA_UPDATE_GOLDEN=1";
}
#endif

// The text of an error number, which differs between C libraries, and the rest of the line.
inline std::string Reason(int error, const std::string& rest = "\n") {
  return std::strerror(error) + rest;
}

// What is written to a terminal while `action` runs, which gets its path.
inline std::string ShownOnTerminal(const std::function<void(const std::string&)>& action) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  if (grantpt(terminal) + unlockpt(terminal) != 0) throw std::runtime_error("no terminal");
  action(ptsname(terminal));
  std::string text;
  char buffer[4096];
  for (ssize_t size; (size = read(terminal, buffer, sizeof buffer)) > 0;) text.append(buffer, size);
  close(terminal);
  return text;
}

// An item of each kind. The blocks of the arrays have sizes that malloc does not round up, so that
// a sanitizer notices one byte too many.
inline const std::string kItems = R"(
bool = true
int = -2147483648
float = 0.35
string = "a text of 24 characters."
string-array = ["a", "", "c"]
int-array = [2147483647, 0, 1, 2, 3, 4]
map-array = [["k", "123456789"], ["k", ""], ["", ""]]
none = []
)";
