#include "file.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <system_error>

#include "utf8.h"

namespace cadrova::host {

namespace {

Error Unreadable(const std::string& name, const std::string& why) {
  return {.file = name, .place = {}, .reason = "can't be read: " + why, .related = {}};
}

Error UnreadableByErrno(const std::string& name) {
  return Unreadable(name, std::generic_category().message(errno));
}

}  // namespace

std::variant<std::string, Error> ReadFile(const std::string& path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
  if (file == nullptr) return UnreadableByErrno(path);
  return ReadStream(file.get(), path);
}

std::variant<std::string, Error> ReadStream(FILE* stream, const std::string& name) {
  constexpr std::size_t kMaximumSize = std::size_t{1} << 30;
  const auto fail_with_size = [&] { return Unreadable(name, "it is larger than 1 GiB"); };
  struct stat status;
  if (fstat(fileno(stream), &status) == 0 && status.st_size > off_t{kMaximumSize}) {
    return fail_with_size();
  }
  std::string contents;
  std::array<char, 65536> buffer;
  while (std::feof(stream) == 0) {
    contents.append(buffer.data(), std::fread(buffer.data(), 1, buffer.size(), stream));
    if (std::ferror(stream) != 0) return UnreadableByErrno(name);
    if (contents.size() > kMaximumSize) return fail_with_size();
  }
  return contents;
}

std::string Printable(std::string_view text) {
  std::string printable;
  AppendSafe(printable, text);
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
