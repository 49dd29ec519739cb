// Suggests the names that mistyped maps were meant to have.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fleet/devices.h"
#include "fleet/suggestions.h"

namespace cadrova::tools {

class MapNameSuggestions {
 public:
  // The codes that the maps know are those in their names; `map_names` is in the order of the file.
  // With `declared`, only the codes of this fleet are known.
  MapNameSuggestions(const std::vector<std::string>& map_names, const Fleet* declared);

  // A name for `map`, one of the maps, of codes that other maps know, or DEFAULT or SIM_DEFAULT.
  // Nothing if they also know the codes in the name of `map`, or if these are not similar to any.
  std::optional<std::string> Suggest(const std::string& map) const;

 private:
  // The regions, or the carriers.
  class Codes {
   public:
    void Add(const std::string& code, std::size_t map);
    void AddDeclared(const std::vector<std::string>& codes);

    // Whether no other map knows `code`.
    bool IsNew(const std::optional<std::string>& code, std::size_t map) const;
    // The code that `text` means in the name of `map`: itself, or a similar one.
    std::optional<std::string> Find(const std::string& text, std::size_t map) const;

   private:
    std::map<std::string, std::vector<std::size_t>> maps_;  // that know a code
    bool are_declared_ = false;
    mutable std::optional<SuggestionIndex> index_;
  };

  std::optional<std::string> Resolve(std::string_view prefix, const std::string& rest,
                                     std::size_t map) const;

  std::map<std::string, NameCodes> codes_;
  std::map<std::string, std::size_t> numbers_;  // of the maps, in the order of the file
  Codes regions_, carriers_;
};

}  // namespace cadrova::tools
