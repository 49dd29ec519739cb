// Arbitrary bytes as the stand-in core's data file and as a handed-over text: a mistake with its
// place, or data that answers; never a crash.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "customization.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace cadrova::host;
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  auto outcome = Customization::Parse(text, "f");
  if (const auto* mistake = std::get_if<Mistake>(&outcome)) {
    if (mistake->line == 0 || mistake->column == 0 || mistake->reason.empty()) std::abort();
    if (mistake->reason.find('\n') != std::string::npos) std::abort();
  } else {
    auto& customization = std::get<Customization>(outcome);
    customization.Set("M", "k", std::string("v"));
    const Item* item = customization.Find("M", "k");
    if (item == nullptr || As<std::string>(*item) == nullptr) std::abort();
  }
  const Item item = ItemFromText(text);
  const auto* string = As<std::string>(item);
  if (string != nullptr && string->find('\0') == std::string::npos && string->size() > size) {
    std::abort();  // a string is no longer than how it was written
  }
  return 0;
}
