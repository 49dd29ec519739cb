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

std::variant<std::string, Error> ReadFile(const std::string& path) {
  constexpr std::size_t kMaximumSize = std::size_t{1} << 30;
  const auto fail = [&](const std::string& why) {
    return Error{.file = path, .place = {}, .reason = "can't be read: " + why, .related = {}};
  };
  const auto fail_with_errno = [&] { return fail(std::generic_category().message(errno)); };
  const auto fail_with_size = [&] { return fail("it is larger than 1 GiB"); };
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
  if (file == nullptr) return fail_with_errno();
  struct stat status;
  if (fstat(fileno(file.get()), &status) == 0 && status.st_size > off_t{kMaximumSize}) {
    return fail_with_size();
  }
  std::string contents;
  std::array<char, 65536> buffer;
  while (std::feof(file.get()) == 0) {
    contents.append(buffer.data(), std::fread(buffer.data(), 1, buffer.size(), file.get()));
    if (std::ferror(file.get()) != 0) return fail_with_errno();
    if (contents.size() > kMaximumSize) return fail_with_size();
  }
  return contents;
}

std::string Printable(std::string_view text) {
  std::string printable(text);
  std::ranges::replace_if(
      printable, [](unsigned char byte) { return byte < ' ' || byte == '\x7F'; }, '?');
  return printable;
}

Error FirstOf(const std::vector<Error>& errors) {
  Error first = errors.front();
  const std::size_t others = errors.size() - 1;
  if (others > 0) {
    first.reason += "; " + std::to_string(others) + (others == 1 ? " more error" : " more errors");
  }
  return first;
}

void ExitWith(const Error& error) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", Printable(ToString(error)).c_str());
  std::_Exit(2);
}

}  // namespace cadrova::host
