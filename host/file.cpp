#include "file.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <system_error>

namespace cadrova::host {

std::variant<std::string, Mistake> ReadFile(const std::string& path) {
  constexpr std::size_t kMost = std::size_t{1} << 30;
  const std::string too_large = "it is larger than 1 GiB";
  const auto refuse = [&](const std::string& why) {
    return Mistake{path, 0, 0, "can't be read: " + why};
  };
  const auto refuse_for_errno = [&] { return refuse(std::generic_category().message(errno)); };
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
  if (file == nullptr) return refuse_for_errno();
  struct stat status;
  if (fstat(fileno(file.get()), &status) == 0 && status.st_size > off_t{kMost}) {
    return refuse(too_large);
  }
  std::string contents;
  std::array<char, 65536> buffer;
  while (std::feof(file.get()) == 0) {
    contents.append(buffer.data(), std::fread(buffer.data(), 1, buffer.size(), file.get()));
    if (std::ferror(file.get()) != 0) return refuse_for_errno();
    if (contents.size() > kMost) return refuse(too_large);
  }
  return contents;
}

std::string Printable(std::string_view text) {
  std::string printable(text);
  std::ranges::replace_if(
      printable, [](unsigned char byte) { return byte < ' ' || byte == '\x7F'; }, '?');
  return printable;
}

void Stop(const Mistake& mistake) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", Printable(ToString(mistake)).c_str());
  std::_Exit(2);
}

}  // namespace cadrova::host
