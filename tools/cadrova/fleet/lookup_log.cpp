#include "fleet/lookup_log.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <set>
#include <tuple>
#include <unordered_set>
#include <utility>
#include <variant>

#include "common/text.h"
#include "existence_tests.h"
#include "failure.h"
#include "file.h"

namespace cadrova::tools {
namespace {

using host::IntArray;
using host::MapArray;
using host::StringArray;

// A function whose calls are in a trace.
struct Function {
  enum class Type { kLookup, kSetSim, kCoreCall, kCoreSetSim, kGetProperty };

  Type type;
  const Family* family = nullptr;  // NULL if several families call it
  Kind kind = Kind::kBool;
};

using Functions = std::unordered_map<std::string, Function>;

Functions ListFunctions() {
  using Type = Function::Type;
  Functions functions = {{"setSimCadrova", {Type::kSetSim}},
                         {"cxx_sim_set_the_cadrova", {Type::kCoreSetSim}},
                         {"GetProperty", {Type::kGetProperty}}};
  for (const Family& family : Families()) {
    for (std::size_t kind = 0; kind < kKindCount; ++kind) {
      const Function lookup = {Type::kLookup, &family, static_cast<Kind>(kind)};
      if (family.Has(lookup.kind)) functions.emplace(family.FunctionName(lookup.kind), lookup);
    }
  }
  const auto add_test = [&](std::string name, const Family* family, const Value& zero) {
    const Function call = {Type::kCoreCall, family, host::KindOf(zero)};
    functions.emplace(name, call);
    if (family != nullptr) return;
    name.replace(name.find("_item_exist"), std::string::npos, "_from_map");
    functions.emplace(std::move(name), call);
  };
  const Family& sim = FindFamily("sim");
#define TEST(test, Type) add_test(#test, nullptr, Type());
#define SIM_TEST(test, Type) add_test(#test, &sim, Type());
  CADROVA_EXISTENCE_TESTS(TEST, SIM_TEST)
#undef TEST
#undef SIM_TEST
  return functions;
}

bool IsDigit(char byte) { return '0' <= byte && byte <= '9'; }

void AppendUtf8(std::string& text, unsigned code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
  } else {
    text += {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
             static_cast<char>(0x80 | (code & 0x3F))};
  }
}

// The rest of a line. Each `Take` function removes what it names from its start, or returns false.
class Rest {
 public:
  explicit Rest(std::string_view text) : text_(text) {}

  bool IsEmpty() const { return text_.empty(); }

  bool Take(std::string_view start) {
    if (!text_.starts_with(start)) return false;
    text_.remove_prefix(start.size());
    return true;
  }

  // At least one byte that `is_wanted` accepts, and all that follow.
  bool TakeWord(bool (*is_wanted)(char), std::string_view* word = nullptr) {
    const auto end =
        static_cast<std::size_t>(std::ranges::find_if_not(text_, is_wanted) - text_.begin());
    if (word != nullptr) *word = text_.substr(0, end);
    text_.remove_prefix(end);
    return end > 0;
  }

  // "text" or, if it is cut, "text"...
  bool TakeString(LoggedString& string) {
    if (!Take("\"")) return false;
    while (!Take("\"")) {
      const std::size_t plain = text_.find_first_of("\"\\");
      if (plain == std::string_view::npos) return false;
      string.text += text_.substr(0, plain);
      text_.remove_prefix(plain);
      if (Take("\\") && !TakeEscaped(string.text)) return false;
    }
    string.is_cut = Take("...");
    return true;
  }

  // A JSON value, nan or inf, which may be cut.
  bool TakeValue() {
    LoggedString string;
    std::size_t depth = 0;
    do {
      if (text_.starts_with('"') ? !TakeString(string) : !TakeMark(depth)) return false;
    } while (depth > 0);
    return true;
  }

  // The name of a map.
  bool TakeName() {
    LoggedString string;
    return text_.starts_with('"') ? TakeString(string) : TakeWord(IsPlainInName);
  }

 private:
  bool TakeEscaped(std::string& text) {
    if (!Take("u")) {
      if (!text_.starts_with('"') && !text_.starts_with('\\')) return false;
      text += text_[0];
      text_.remove_prefix(1);
      return true;
    }
    const std::string digits(text_.substr(0, 4));
    const bool is_hex = digits.find_first_not_of("0123456789abcdef") == std::string::npos;
    if (digits.size() < 4 || !is_hex) return false;
    AppendUtf8(text, static_cast<unsigned>(std::stoul(digits, nullptr, 16)));
    text_.remove_prefix(4);
    return true;
  }

  // A bracket or, inside of a list, a comma; otherwise a number or a word.
  bool TakeMark(std::size_t& depth) {
    if (Take("[")) {
      ++depth;
    } else if (depth > 0 && Take("]")) {
      --depth;
    } else if (depth == 0 || !Take(",")) {
      return TakeWord([](char byte) { return IsPlainInName(byte) || byte == '+'; });
    }
    return true;
  }

  std::string_view text_;
};

// A call at the start of the rest of a line, up to its closing parenthesis.
struct Call {
  Function function = {};
  LoggedString first, second;  // `second` is empty for a lookup
  LoggedString third;          // of cxx_sim_set_the_cadrova
};

bool TakeCall(Rest& rest, const Functions& functions, Call& call) {
  using Type = Function::Type;
  std::string_view name;
  if (!rest.TakeWord(IsPlainInName, &name)) return false;
  const auto found = functions.find(std::string(name));
  if (found == functions.end() || !rest.Take("(") || !rest.TakeString(call.first)) return false;
  call.function = found->second;
  const auto& [type, family, kind] = call.function;
  if (type == Type::kLookup) {
    const bool has_default = family->Get(kind).takes_default;
    return (!has_default || (rest.Take(", ") && rest.TakeValue())) && rest.Take(")");
  }
  if (!rest.Take(", ") || !rest.TakeString(call.second)) return false;
  if (type == Type::kCoreSetSim) {
    return rest.Take(", ") && rest.TakeString(call.third) && rest.Take(")");
  }
  // A default is the third argument of some functions that read a value.
  return (type != Type::kCoreCall || !rest.Take(", ") || rest.TakeValue()) && rest.Take(")");
}

// The maps at the end of a line. `before` comes before the first one.
bool TakeMaps(Rest& rest, std::string_view before) {
  if (rest.Take("; no calls to the core seen")) return rest.IsEmpty();
  do {
    if (!rest.Take(before) || !rest.TakeName()) return false;
    before = ", ";
  } while (!rest.IsEmpty());
  return true;
}

// What follows a call in its line.
bool TakeResult(Rest& rest, Function::Type type) {
  using Type = Function::Type;
  if (type == Type::kSetSim) return TakeMaps(rest, "; handed to ");
  if (type == Type::kCoreSetSim) return rest.IsEmpty();
  if (!rest.Take(" = ") || !rest.TakeValue()) return false;
  if (type != Type::kLookup) return rest.IsEmpty();
  if (rest.Take(" from ")) {
    if (!rest.TakeName()) return false;
  } else if (!rest.Take(", the default") && !rest.Take(", from an unknown map")) {
    return false;
  }
  return TakeMaps(rest, "; asked ");
}

class LogReader {
 public:
  LogReader(std::string_view text, const std::string& file) : text_(text) { log_.file = file; }

  LookupLog Read() {
    while (!text_.empty()) {
      ++line_;
      const std::size_t end = text_.find('\n');
      const bool may_be_incomplete = end == std::string_view::npos && line_ > 1;
      if (!ReadLine(text_.substr(0, end)) && !may_be_incomplete) {
        Refuse("not a line of a trace; write the trace with cadrova trace -o FILE");
      }
      text_.remove_prefix(std::min(end, text_.size() - 1) + 1);
    }
    return std::move(log_);
  }

 private:
  [[noreturn]] void Refuse(const std::string& reason) const {
    throw Failure(host::Error{log_.file, {line_, 0}, reason, {}});
  }

  bool ReadLine(std::string_view line) {
    Rest rest(line);
    if (rest.Take("libcadrova_trace.so: ")) return true;
    const bool is_step = rest.Take("    ");
    if (!is_step) {
      if (!rest.TakeWord(IsDigit)) return false;
      if (rest.Take(".") && !rest.TakeWord(IsDigit)) return false;
      if (!rest.Take(" ")) return false;
      if (rest.Take("lookups: ")) {
        Refuse("a summary does not contain the lookups; trace without --summary");
      }
    }
    Call call;
    if (!TakeCall(rest, functions_, call) || !TakeResult(rest, call.function.type)) return false;
    const auto type = call.function.type;
    // The lookup of a step is in a line above.
    if (is_step) return type != Function::Type::kLookup && type != Function::Type::kSetSim;
    Add(std::move(call));
    return true;
  }

  void Add(Call call) {
    switch (call.function.type) {
      case Function::Type::kLookup:
        return AddLookup(call.function, std::move(call.first));
      case Function::Type::kCoreCall:
        return AddLookup(call.function, std::move(call.second));
      case Function::Type::kSetSim:
        return AddSimItem(std::move(call.first), std::move(call.second));
      case Function::Type::kCoreSetSim:
        return AddSimItem(std::move(call.second), std::move(call.third));
      case Function::Type::kGetProperty:
        return;
    }
  }

  void AddLookup(const Function& function, LoggedString key) {
    const auto& [type, family, kind] = function;
    std::string id = key.text;
    id += {static_cast<char>(key.is_cut), static_cast<char>(kind)};
    id += family == nullptr ? "" : family->name;
    if (lookup_ids_.insert(std::move(id)).second) {
      log_.lookups.push_back({family, kind, std::move(key), line_});
    }
  }

  void AddSimItem(LoggedString key, LoggedString value) {
    const std::tuple id(key.text, key.is_cut, value.text, value.is_cut);
    if (sim_item_ids_.insert(id).second) {
      log_.sim_items.push_back({std::move(key), std::move(value), line_});
    }
  }

  const Functions functions_ = ListFunctions();
  std::string_view text_;
  int line_ = 0;
  std::unordered_set<std::string> lookup_ids_;
  std::set<std::tuple<std::string, bool, std::string, bool>> sim_item_ids_;
  LookupLog log_;
};

}  // namespace

LookupLog ParseLookupLog(std::string_view text, const std::string& file) {
  return LogReader(text, file).Read();
}

LookupLog ReadLookupLog(const std::string& path) {
  const std::string name = path == "-" ? "<stdin>" : path;
  const auto contents = path == "-" ? host::ReadStream(stdin, name) : host::ReadFile(path);
  if (const auto* error = std::get_if<host::Error>(&contents)) throw Failure(*error);
  return ParseLookupLog(std::get<std::string>(contents), name);
}

}  // namespace cadrova::tools
