#include "lookup/data_source.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <tuple>
#include <utility>
#include <variant>

#include "cadrova/cadrova.h"
#include "core/for_command.h"
#include "failure.h"
#include "file.h"
#include "lookup/families.h"
#include "output/console.h"

// Defined only if the core is the fake one.
namespace cadrova::host {
[[gnu::weak]] ParsedFile ParseData(std::string_view toml, const std::string& name);
[[gnu::weak]] void UseData(std::shared_ptr<LoadedFile> data);
[[gnu::weak]] Contents List();
[[gnu::weak]] std::vector<std::string> ListMapNames();
[[gnu::weak]] void ClearSim();
[[gnu::weak]] std::variant<TomlNode, Error> ParseToml(std::string_view toml,
                                                      const std::string& name);
}  // namespace cadrova::host

namespace cadrova::tools {
namespace {

void CheckPath(const std::string& path, const std::string& what) {
  if (path.empty()) throw Failure("the name of the " + what + " is empty");
  if (!HasFakeCore()) {
    throw Failure("this core can't load " + path + "; only the fake core can load files");
  }
}

void RequireList(const std::string& advice) {
  if (!HasFakeCore()) throw Failure("this core can't list its contents; " + advice);
}

}  // namespace

bool HasFakeCore() { return host::List != nullptr; }

std::optional<std::string> DefaultDataFile() {
  const char* const path = std::getenv("CADROVA_HOST_DATA");
  if (path == nullptr || *path == '\0' || !HasFakeCore()) return std::nullopt;
  return path;
}

std::string RequireDefaultDataFile() {
  RequireList("only the fake core can");
  if (auto path = DefaultDataFile()) return *std::move(path);
  throw Failure("no data file is named; name one as FILE or with CADROVA_HOST_DATA");
}

void WarnOfSample() {
  if (!HasFakeCore() || DefaultDataFile()) return;
  PrintError(
      "cadrova: no data file is named, so the installed sample is used; name one with --data or "
      "CADROVA_HOST_DATA");
}

DataFile::DataFile(const std::string& path) : name_(path == "-" ? "<stdin>" : path) {
  CheckPath(path, "customization file");
  auto contents = path == "-" ? host::ReadStream(stdin, name_) : host::ReadFile(path);
  if (auto* error = std::get_if<host::Error>(&contents)) {
    errors_.push_back(std::move(*error));
    return;
  }
  auto parsed = host::ParseData(std::get<std::string>(contents), name_);
  data_ = std::move(parsed.data);
  errors_ = std::move(parsed.errors);
  has_syntax_error_ = parsed.has_syntax_error;
}

void DataFile::Use() const {
  if (!errors_.empty()) throw Failure(host::FirstOf(errors_));
  host::UseData(data_);
}

host::Contents ListContents(const std::string& advice) {
  RequireList(advice);
  return host::List();
}

std::vector<std::string> ListMapNames(const std::string& advice) {
  RequireList(advice);
  return host::ListMapNames();
}

host::Place PlaceOf(const host::Contents& contents, const std::string& map,
                    const std::string& key) {
  const auto id = [](const host::Contents::Item& item) { return std::tie(item.map, item.key); };
  const auto found = std::ranges::lower_bound(contents.items, std::tie(map, key), {}, id);
  const bool is_there = found != contents.items.end() && id(*found) == std::tie(map, key);
  return is_there ? found->place : host::Place();
}

std::string LocationText(const std::string& file, host::Place place) {
  return place.line == 0 ? "" : host::Printable(file) + ':' + std::to_string(place.line);
}

std::string ShortLocationText(const std::string& file, host::Place place) {
  return LocationText(file.substr(file.rfind('/') + 1), place);
}

std::vector<host::Kind> KindsOfSimItem(const std::string& text) {
  const std::string key = "key";
  android::setSimCadrova(key, text);
  std::vector<host::Kind> kinds;
  for (std::size_t kind = 0; kind < kKindCount; ++kind) {
    ExistenceTest* const test = ExistenceTestOf(static_cast<Kind>(kind), true);
    if (CoreContains(test, "SIM_DEFAULT", key)) kinds.push_back(static_cast<Kind>(kind));
  }
  host::ClearSim();
  return kinds;
}

host::TomlNode ReadToml(const std::string& path, const std::string& what) {
  CheckPath(path, what);
  const auto contents = host::ReadFile(path);
  if (const auto* error = std::get_if<host::Error>(&contents)) throw Failure(*error);
  auto document = host::ParseToml(std::get<std::string>(contents), path);
  if (const auto* error = std::get_if<host::Error>(&document)) throw Failure(*error);
  return std::get<host::TomlNode>(std::move(document));
}

}  // namespace cadrova::tools
