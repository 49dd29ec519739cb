// Reads arbitrary bytes as a customization file of the fake core, and as the text of a SIM item.
// The result must be items, or errors that have a place and one line of text, and never a crash.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "store.h"
#include "toml_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace cadrova::host;
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  const auto [data, errors] = ParseData(text, "f");
  if ((data == nullptr) == errors.empty()) std::abort();
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
  const StoredValue value = SimValueFromText(text);
  const auto* string = As<std::string>(value);
  if (string != nullptr && string->find('\0') == std::string::npos && string->size() > size) {
    std::abort();  // A string is no longer than its TOML form.
  }
  return 0;
}
