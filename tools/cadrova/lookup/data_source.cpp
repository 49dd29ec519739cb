#include "lookup/data_source.h"

#include <utility>
#include <variant>

#include "failure.h"
#include "file.h"

// Defined only if the core is the fake one.
namespace cadrova::host {
[[gnu::weak]] std::vector<Error> LoadFile(const std::string& path);
[[gnu::weak]] std::vector<Error> LoadText(const std::string& toml);
[[gnu::weak]] Contents List();
}  // namespace cadrova::host

namespace cadrova::tools {
namespace {

void CheckPath(const std::string& path) {
  if (path.empty()) throw Failure("the name of the customization file is empty");
  if (host::LoadFile == nullptr) {
    throw Failure(path + ": this parser core can't read customization files");
  }
}

}  // namespace

std::vector<host::Error> TryLoadData(const std::string& path) {
  CheckPath(path);
  return host::LoadFile(path);
}

void LoadData(const std::string& path) {
  const auto errors = TryLoadData(path);
  if (!errors.empty()) throw Failure(errors[0]);
}

DataFile::DataFile(const std::string& path) : path_(path) {
  CheckPath(path);
  auto contents = host::ReadFile(path);
  if (const auto* error = std::get_if<host::Error>(&contents)) throw Failure(*error);
  text_ = std::get<std::string>(std::move(contents));
}

void DataFile::Load() const {
  auto errors = host::LoadText(text_);
  if (errors.empty()) return;
  errors[0].file = path_;
  throw Failure(errors[0]);
}

bool CanListContents() { return host::List != nullptr; }

host::Contents ListContents() {
  if (!CanListContents()) throw Failure("this parser core can't list its contents");
  return host::List();
}

}  // namespace cadrova::tools
