#include "commands/complete.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

#include "commands/shared_options.h"
#include "failure.h"
#include "fleet/devices.h"
#include "fleet/fleet_file.h"
#include "lookup/data_source.h"
#include "lookup/families.h"

namespace cadrova::tools {
namespace {

using Names = std::vector<std::string>;
using Given = std::map<ValueType, std::string>;

// The word as a program would get it from the shell. Variables and commands in it are not replaced.
std::string Unquoted(const std::string& word) {
  std::string text;
  char quote = '\0';
  std::size_t i = 0;
  const char* const home = std::getenv("HOME");
  if (word.starts_with("~/") && home != nullptr) {
    text = home;
    i = 1;
  }
  for (; i < word.size(); ++i) {
    const char byte = word[i];
    const char* const escaped = quote == '"' ? "\"\\$`" : quote == '\0' ? nullptr : "";
    const bool is_escape =
        byte == '\\' && i + 1 < word.size() &&
        (escaped == nullptr || std::string_view(escaped).find(word[i + 1]) != std::string::npos);
    if (is_escape) {
      text += word[++i];
    } else if (byte == quote) {
      quote = '\0';
    } else if (quote == '\0' && (byte == '"' || byte == '\'')) {
      quote = byte;
    } else {
      text += byte;
    }
  }
  return text;
}

std::optional<std::string> DataFileOf(const Given& given) {
  const auto found = given.find(ValueType::kDataFile);
  return found == given.end() ? DefaultDataFile() : found->second;
}

// Makes the core use the data that the command would use, and returns whether it can. Does not wait
// for standard input or for the writer of a pipe.
bool UseData(const Given& given) {
  if (!HasFakeCore()) return false;
  const auto file = DataFileOf(given);
  if (!file) return true;
  std::error_code error;
  if (*file == "-" || !std::filesystem::is_regular_file(*file, error)) return false;
  const DataFile data(*file);
  if (!data.errors().empty()) return false;
  data.Use();
  return true;
}

Names ListFamilies() {
  Names names;
  for (const Family& family : Families()) names.emplace_back(family.name);
  return names;
}

Names ListKinds(const Given& given) {
  const auto found = given.find(ValueType::kFamily);
  Names names;
  for (std::size_t i = 0; i < kKindCount; ++i) {
    const Kind kind = static_cast<Kind>(i);
    const bool is_missing = std::ranges::any_of(Families(), [&](const Family& family) {
      return found != given.end() && family.name == found->second && !family.Has(kind);
    });
    if (!is_missing) names.emplace_back(ToString(kind));
  }
  return names;
}

// All keys that begin with `start`. If they are too many to read, only their next level, such as
// "calling.".
Names ListKeys(const std::string& start, const Given& given) {
  constexpr std::size_t kMostKeys = 1000;
  const auto kind = given.find(ValueType::kKind);
  const auto contents = ListContents();
  std::set<std::string_view> keys, levels;
  for (const auto& item : contents.items) {
    const bool has_kind =
        kind == given.end() || std::ranges::any_of(item.kinds, [&](Kind item_kind) {
          return kind->second == ToString(item_kind);
        });
    if (!has_kind || !item.key.starts_with(start)) continue;
    const std::string_view key = item.key;
    keys.insert(key);
    levels.insert(key.substr(0, std::min(key.find('.', start.size()), key.size() - 1) + 1));
  }
  const auto& listed = keys.size() > kMostKeys ? levels : keys;
  return {listed.begin(), listed.end()};
}

// Moves what is before the last `separator` from the rest of the word to its start.
void SplitAfter(char separator, IncompleteWord& word) {
  const std::size_t end = word.rest.rfind(separator) + 1;
  word.start += word.rest.substr(0, end);
  word.rest.erase(0, end);
}

// The codes that are not in the comma-separated list yet.
Names ListOthers(Names codes, IncompleteWord& word) {
  const std::string list = ',' + word.rest;
  std::erase_if(codes, [&](const std::string& code) {
    return list.find(',' + code + ',') != std::string::npos;
  });
  SplitAfter(',', word);
  return codes;
}

// Of the fleet file beside the data, or of the maps.
Fleet ListCodes(const Given& given) {
  const auto maps = ListMapNames();
  std::optional<FleetFile> file;
  const auto data = DataFileOf(given);
  const auto path = data ? FindFleetFile(*data) : std::nullopt;
  if (path) file = ReadFleetFile(*path);
  return FleetChoice{file ? &*file : nullptr, {}, {}}.ToFleet(maps);
}

// A device begins with its region. Another word is a part of a key.
Names ListRegionsAndKeys(Names regions, const IncompleteWord& word) {
  for (std::string& region : regions) region += '/';
  const Names keys = ListKeys(word.rest, word.given);
  regions.insert(regions.end(), keys.begin(), keys.end());
  return regions;
}

Names ListCarriersOf(const Names& carriers, IncompleteWord& word) {
  SplitAfter('/', word);
  return carriers;
}

Names ListData(ValueType type, IncompleteWord& word) {
  if (!UseData(word.given)) return {};
  if (type == ValueType::kKey) return ListKeys(word.rest, word.given);
  if (type == ValueType::kMap) return ListMapNames();
  auto [regions, carriers, has_device] = ListCodes(word.given);
  switch (type) {
    case ValueType::kRegion:
      return regions;
    case ValueType::kCarrier:
      return carriers;
    case ValueType::kRegions:
      return ListOthers(regions, word);
    case ValueType::kCarriers:
      return ListOthers(carriers, word);
    case ValueType::kDeviceOrKey:
      return word.rest.find('/') == std::string::npos ? ListRegionsAndKeys(regions, word)
                                                      : ListCarriersOf(carriers, word);
    default:
      return {};
  }
}

Names ListValues(IncompleteWord& word) {
  if (const auto* names = std::get_if<Names>(&word.completion)) return *names;
  const ValueType type = std::get<ValueType>(word.completion);
  switch (type) {
    case ValueType::kOther:
    case ValueType::kFile:
    case ValueType::kDataFile:
    case ValueType::kProgram:
      return {};
    case ValueType::kFamily:
      return ListFamilies();
    case ValueType::kKind:
      return ListKinds(word.given);
    case ValueType::kKeyOrFamily: {
      Names names = ListFamilies();
      const Names keys = ListData(ValueType::kKey, word);
      names.insert(names.end(), keys.begin(), keys.end());
      return names;
    }
    default:
      return ListData(type, word);
  }
}

std::string SourceOf(const IncompleteWord& word) {
  const auto* const type = std::get_if<ValueType>(&word.completion);
  if (type == nullptr) return ":words";
  // The arguments of the program follow.
  if (*type == ValueType::kProgram) return word.given.contains(*type) ? ":files" : ":programs";
  return *type == ValueType::kFile || *type == ValueType::kDataFile ? ":files" : ":words";
}

}  // namespace

Names Candidates(IncompleteWord word) {
  Names candidates;
  for (const std::string& value : ListValues(word)) {
    const bool has_control =
        std::ranges::any_of(value, [](unsigned char byte) { return byte < ' ' || byte == '\x7F'; });
    // An empty value is the code of an unset property.
    if (value.empty() || has_control || !value.starts_with(word.rest)) continue;
    candidates.push_back(word.start + value);
  }
  return candidates;
}

int Complete(const Names& words) {
  if (std::freopen("/dev/null", "w", stderr) == nullptr) return 0;
  std::string text;
  try {
    Names unquoted(words.size());
    std::ranges::transform(words, unquoted.begin(), Unquoted);
    const IncompleteWord word = ParseIncomplete(unquoted);
    for (const std::string& candidate : Candidates(word)) text += candidate + '\n';
    text += SourceOf(word);
  } catch (const Failure&) {
    text = ":words";  // There is no such command.
  }
  std::fputs((text + '\n').c_str(), stdout);
  return 0;
}

}  // namespace cadrova::tools
