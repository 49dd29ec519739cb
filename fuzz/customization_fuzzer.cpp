// Reads arbitrary bytes as a customization file of the fake core, and as the text of a SIM item.
// The result must be items, or errors that have a place and one line of text, and never a crash.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "store.h"
#include "toml_reader.h"

namespace cadrova::host {
namespace {

// What `ParseData` finds after the first `lines` of `text`, without names and numbers of lines.
std::string Summary(const std::string& text, int lines) {
  std::string summary;
  const auto add = [&](const Place& place) {
    summary += std::to_string(place.line - lines) + ':' + std::to_string(place.column) + ' ';
  };
  const ParsedFile parsed = ParseData(text, "f");
  for (const Error& error : parsed.errors) {
    add(error.place);
    summary += error.reason.substr(0, error.reason.rfind(" in line ")) + ' ';
    if (error.related) add(*error.related);
  }
  std::vector<Contents::Item> items;
  if (parsed.data != nullptr) parsed.data->store.AppendItems(items);
  for (const Contents::Item& item : items) {
    add(item.place);
    summary += item.map + ' ' + item.key + ' ' + std::to_string(item.kinds[0] == Kind::kBool) + ' ';
  }
  return summary;
}

// The result must not depend on whether the maps are parsed one after the other or, because of a
// map in two parts of the document, all at once.
void CheckParts(const std::string& text) {
  const std::string in_two_parts = "[\"a~\"]\n[\"b~\"]\n[\"a~\".c]\n";
  if (text.find('~') != std::string::npos) return;
  if (Summary("[x]\n" + text, 0) != Summary(in_two_parts + "[x]\n" + text, 3)) std::abort();
}

}  // namespace
}  // namespace cadrova::host

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace cadrova::host;
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  const auto [data, errors, has_syntax_error] = ParseData(text, "f");
  if ((data == nullptr) == errors.empty()) std::abort();
  if (has_syntax_error && errors.size() != 1) std::abort();
  Place last;
  for (const Error& error : errors) {
    const auto [line, column] = error.place;
    if (line == 0 || column == 0 || error.reason.empty()) std::abort();
    if (error.reason.find('\n') != std::string::npos) std::abort();
    if (line < last.line || (line == last.line && column < last.column)) std::abort();
    last = error.place;
  }
  std::vector<Contents::Item> items;
  if (data != nullptr) data->store.AppendItems(items);
  for (const Contents::Item& item : items) {
    const Store::Item* found = data->store.Find(item.map, item.key);
    if (found == nullptr || !(found->place == item.place) || item.place.line == 0) std::abort();
    if (!data->store.Maps().contains(item.map)) std::abort();
  }
  CheckParts(text);
  const StoredValue value = SimValueFromText(text);
  const auto* string = As<std::string>(value);
  if (string != nullptr && string->find('\0') == std::string::npos && string->size() > size) {
    std::abort();  // A string is no longer than its TOML form.
  }
  return 0;
}
