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
  if (!HasFakeCore()) {
    throw Failure("this core can't load " + path + "; only the fake core can load files");
  }
}

}  // namespace

bool HasFakeCore() { return host::List != nullptr; }

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

host::Contents ListContents(const std::string& advice) {
  if (!HasFakeCore()) throw Failure("this core can't list its contents; " + advice);
  return host::List();
}

}  // namespace cadrova::tools
