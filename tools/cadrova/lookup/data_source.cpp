#include "lookup/data_source.h"

#include <utility>
#include <variant>

#include "file.h"
#include "output/console.h"

// There where the core is the stand-in one.
namespace cadrova::host {
[[gnu::weak]] std::optional<Mistake> AnswerFromFile(const std::string& path);
[[gnu::weak]] std::optional<Mistake> AnswerFromText(const std::string& toml);
[[gnu::weak]] Inventory TakeInventory();
}  // namespace cadrova::host

using cadrova::host::Mistake;

namespace {

void RequireName(const std::string& path) {
  if (path.empty()) Fail("'' names no file");
}

}  // namespace

std::optional<Mistake> TryFile(const std::string& path) {
  RequireName(path);
  if (cadrova::host::AnswerFromFile == nullptr) {
    Fail("--data: this parser core reads no file of ours");
  }
  return cadrova::host::AnswerFromFile(path);
}

void AnswerFromFile(const std::string& path) {
  if (const auto mistake = TryFile(path)) cadrova::host::Stop(*mistake);
}

DataFile::DataFile(const std::string& path) : path_(path) {
  RequireName(path);
  auto contents = cadrova::host::ReadFile(path);
  if (const auto* mistake = std::get_if<Mistake>(&contents)) cadrova::host::Stop(*mistake);
  contents_ = std::get<std::string>(std::move(contents));
}

void DataFile::Answer() const {
  if (cadrova::host::AnswerFromText == nullptr) Fail("this parser core reads no file of ours");
  if (auto mistake = cadrova::host::AnswerFromText(contents_)) {
    mistake->file = path_;
    cadrova::host::Stop(*mistake);
  }
}

bool CanList() { return cadrova::host::TakeInventory != nullptr; }

cadrova::host::Inventory List() {
  if (!CanList()) Fail("this parser core can't list what it holds");
  return cadrova::host::TakeInventory();
}
