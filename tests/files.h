// The files of a test program. They are in a temporary folder, which is removed at exit.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
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

// Everything that is written to the terminal of `pseudoterminal` until all programs have closed it.
inline std::string ReadAll(int pseudoterminal) {
  std::string text;
  char buffer[4096];
  while (true) {
    const ssize_t size = read(pseudoterminal, buffer, sizeof buffer);
    if (size <= 0) break;
    text.append(buffer, static_cast<std::size_t>(size));
  }
  close(pseudoterminal);
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
