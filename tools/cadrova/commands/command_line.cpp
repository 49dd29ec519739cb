#include "commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>

#include "commands/command.h"
#include "commands/complete.h"
#include "common/text.h"
#include "failure.h"
#include "output/console.h"
#include "output/table.h"

namespace cadrova::tools {
namespace {

// `store` is called with the given values, if there are any. (CLI11's own conversions would take
// most of the time to compile this file.)
CLI::Option& Declare(CLI::App& app, const std::string& name, const std::string& type,
                     const std::string& description, const CLI::callback_t& store) {
  // If a value is missing, CLI11 takes the next option as the value.
  return *app.add_option(name, store, description)
              ->type_name(type)
              ->check([name](const std::string& value) {
                return name[0] == '-' && value.starts_with("--")
                           ? "a value is missing before '" + value + "'"
                           : "";
              });
}

const CommandInfo& FindCommand(const std::string& name) {
  for (const CommandInfo& command : Commands()) {
    if (command.name == name) return command;
  }
  throw Failure("unknown command '" + name + "'; use one of: " + Join(CommandNames()));
}

constexpr std::size_t kDescriptionColumn = 20;

// `text` with the lines that are too long for the terminal broken between words. The rest is
// below the description, or behind "Usage: ".
std::string FitTerminal(const std::string& text) {
  const std::size_t width = TerminalWidth();
  std::string fitting;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
    const std::size_t label = line.find(": ");
    const std::size_t column = begin == 2 ? std::min(kDescriptionColumn, line.size())
                               : begin == 0 && label != std::string::npos ? label + 2
                                                                          : begin;
    const std::size_t rest = width - std::min(width, column);
    fitting += line.substr(0, column) +
               Join(Wrapped(line.substr(column), rest), '\n' + std::string(column, ' ')) + '\n';
  }
  return fitting;
}

// Reads an incomplete command line word by word, as the parser would. Throws a Failure if there is
// no such command.
class WordReader {
 public:
  WordReader(const CLI::App& app, const Completions& completions)
      : app_(&app), completions_(completions) {}

  void Read(const std::string& word) {
    if (IsCommand(word)) {
      app_ = app_->get_subcommand(FindCommand(word).name);
      return;
    }
    const auto [option, start] = OwnerOf(word);
    if (option == nullptr) return;
    const auto* type = std::get_if<ValueType>(&completions_.at(option));
    if (type == nullptr) return;
    // A key is no family, so it does not restrict kinds.
    given_.emplace(*type == ValueType::kKeyOrFamily ? ValueType::kFamily : *type,
                   word.substr(start));
  }

  IncompleteWord ReadLast(const std::string& word) {
    if (IsCommand(word)) return {"", word, CommandNames()};
    if (IsOption(word) && word.find('=') == std::string::npos) return {"", word, OptionNames()};
    const auto [option, start] = OwnerOf(word);
    if (option == nullptr) return {"", word};
    return {word.substr(0, start), word.substr(start), completions_.at(option), given_};
  }

 private:
  bool IsOption(const std::string& word) const {
    return option_ == nullptr && !are_options_over_ && word.starts_with('-');
  }

  bool IsCommand(const std::string& word) const {
    return app_->get_parent() == nullptr && option_ == nullptr && !IsOption(word);
  }

  // The option or argument that the word is the value of, from a position on, or NULL.
  std::pair<const CLI::Option*, std::size_t> OwnerOf(const std::string& word) {
    if (option_ != nullptr) return {std::exchange(option_, nullptr), 0};
    if (!IsOption(word) || word == "-") return {NextArgument(), 0};
    are_options_over_ = word == "--";
    const std::size_t equals = word.find('=');
    const CLI::Option* const option = app_->get_option_no_throw(word.substr(0, equals));
    if (option == nullptr || option->get_items_expected_max() == 0) return {nullptr, 0};
    if (equals != std::string::npos) return {option, equals + 1};
    option_ = option;
    return {nullptr, 0};
  }

  // The last one may have several values.
  const CLI::Option* NextArgument() {
    const auto arguments =
        app_->get_options([](const CLI::Option* option) { return option->get_positional(); });
    if (next_argument_ == arguments.size()) return nullptr;
    const CLI::Option* const argument = arguments[next_argument_];
    if (argument->get_items_expected_max() == 1) ++next_argument_;
    return argument;
  }

  std::vector<std::string> OptionNames() const {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app_->get_options()) {
      for (const std::string& name : option->get_snames()) names.push_back('-' + name);
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    return names;
  }

  const CLI::App* app_;  // cadrova itself, then the command
  const Completions& completions_;
  const CLI::Option* option_ = nullptr;  // whose value is the next word
  std::size_t next_argument_ = 0;
  bool are_options_over_ = false;
  std::map<ValueType, std::string> given_;
};

// The argument parser with all commands. Runs the command that the arguments name.
class Parser {
 public:
  Parser() : app_("Look up how a device is customized, and why", "cadrova") {
    app_.get_formatter()->column_width(kDescriptionColumn);
    app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app_.get_formatter()->label("REQUIRED", "");
    app_.set_version_flag("--version", CADROVA_VERSION, "Print the version and exit");
    app_.set_help_flag("-h,--help", "Print this help message and exit");
    app_.require_subcommand(0, 1);
    for (const CommandInfo& info : Commands()) {
      CLI::App& app = *app_.add_subcommand(info.name, info.summary)->group("Commands");
      app.footer(std::string("Example: ") + info.example);
      commands_.push_back(info.make());
      Options options(app, completions_);
      commands_.back()->DeclareOptions(options);
    }
  }

  int Run(int argc, const char* const* argv) {
    if (argc > 1 && argv[1][0] != '-') FindCommand(argv[1]);
    try {
      app_.parse(WordsForParser(argc, argv));
    } catch (const CLI::ParseError& error) {
      return PrintOrThrow(error);
    }
    for (std::size_t i = 0; i < commands_.size(); ++i) {
      if (app_.got_subcommand(Commands()[i].name)) return commands_[i]->Run();
    }
    throw Failure("a command is required; see cadrova --help");
  }

  IncompleteWord ParseIncomplete(const std::vector<std::string>& words) const {
    WordReader reader(app_, completions_);
    for (std::size_t i = 0; i + 1 < words.size(); ++i) reader.Read(words[i]);
    return reader.ReadLast(words.empty() ? "" : words.back());
  }

  std::string Help(const std::string& command) const {
    const std::string name = command.empty() ? "" : FindCommand(command).name;
    const CLI::App* app = command.empty() ? &app_ : app_.get_subcommand(name);
    return Trimmed(app_.get_formatter()->make_help(
        app, command.empty() ? "cadrova" : "cadrova " + name, CLI::AppFormatMode::Normal));
  }

 private:
  // For the terminal, and without the blank lines at the end of some texts of CLI11.
  static std::string Trimmed(const std::string& text) {
    return FitTerminal(text.substr(0, text.find_last_not_of('\n') + 1));
  }

  // CLI11 takes the words in reverse order. Of "--name=", it would take the next word as the value,
  // so the empty value becomes a word.
  std::vector<std::string> WordsForParser(int argc, const char* const* argv) const {
    std::vector<std::string> words;
    const bool has_command = argc > 1 && argv[1][0] != '-';
    const CLI::App* const app = has_command ? app_.get_subcommand(argv[1]) : nullptr;
    bool are_options_over = app == nullptr;
    for (int i = 1; i < argc; ++i) {
      std::string word = argv[i];
      are_options_over = are_options_over || word == "--";
      const bool may_be_option = !are_options_over && word.starts_with("--") && word.ends_with('=');
      const std::string name = word.substr(0, word.size() - (may_be_option ? 1 : 0));
      const auto* const option = may_be_option ? app->get_option_no_throw(name) : nullptr;
      if (option != nullptr && option->get_items_expected_max() > 0) {
        words.push_back(name);
        word.clear();
      }
      words.push_back(word);
    }
    std::ranges::reverse(words);
    return words;
  }

  // CLI11 also throws help and version texts as errors.
  int PrintOrThrow(const CLI::ParseError& error) const {
    if (error.get_exit_code() == 0) {
      std::ostringstream text;
      app_.exit(error, text);
      Print(Trimmed(text.str()));
      return kSuccess;
    }
    std::string command = "cadrova";
    for (const CLI::App* app : app_.get_subcommands()) command += ' ' + app->get_name();
    throw Failure(Describe(error) + "; see " + command + " --help");
  }

  // In plainer words than CLI11's, and with arguments in the order in which they were given.
  std::string Describe(const CLI::ParseError& error) const {
    std::string what = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
      const std::vector<std::string> rest = app_.remaining(true);
      const bool is_option = std::ranges::any_of(
          rest, [](const std::string& argument) { return argument.starts_with('-'); });
      return "not expected: " + Join(rest, " ") +
             (is_option ? "; put arguments that start with \"-\" after \"--\"" : "");
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
      constexpr std::pair<const char*, const char*> endings[] = {
          {": At Most 1 required", " is given more than once"},
          {": 1 required", " needs a value"},
          {" was given a disallowed flag override", " takes no value"}};
      for (const auto& [ending, plainer] : endings) {
        const std::size_t at = what.find(ending);
        // CLI11 names a flag without its dashes.
        const std::string dashes = what.starts_with('-') ? "" : "--";
        if (at != std::string::npos) return dashes + what.substr(0, at) + plainer;
      }
    }
    return what;
  }

  CLI::App app_;
  std::vector<std::unique_ptr<Command>> commands_;
  Completions completions_;
};

}  // namespace

void Options::AddRequired(const std::string& name, std::string& value,
                          const std::string& description, const Completion& completion) {
  CLI::Option& option = Declare(app_, name, "", description, [&](const CLI::results_t& values) {
    value = values.front();
    return true;
  });
  option.required();
  completions_[&option] = completion;
}

void Options::Add(const std::string& name, std::optional<std::string>& value,
                  const std::string& type, const std::string& description,
                  const Completion& completion) {
  const CLI::Option& option =
      Declare(app_, name, type, description, [&](const CLI::results_t& values) {
        value = values.back();
        return true;
      });
  completions_[&option] = completion;
}

void Options::AddFlag(const std::string& name, bool& value, const std::string& description) {
  app_.add_flag_callback(name, [&] { value = true; }, description)->disable_flag_override();
}

void Options::AddRepeatable(const std::string& name, std::vector<std::string>& values,
                            const std::string& type, const std::string& description,
                            const Completion& completion) {
  CLI::Option& option = Declare(app_, name, type, description, [&](const CLI::results_t& given) {
    values = given;
    return true;
  });
  option.expected(1)->allow_extra_args(false)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  completions_[&option] = completion;
}

void Options::AddRemaining(const std::string& name, std::vector<std::string>& values,
                           const std::string& description, Need need,
                           const Completion& completion) {
  CLI::Option& option = *app_.add_option(
      name,
      [&](const CLI::results_t& given) {
        values = given;
        return true;
      },
      description);
  option.required(need == Need::kAtLeastOne)
      ->type_name("")
      ->expected(CLI::detail::expected_max_vector_size);
  completions_[&option] = completion;
}

int RunCommandLine(int argc, const char* const* argv) {
  if (argc > 1 && argv[1] == std::string_view("__complete")) {
    return Complete({argv + 2, argv + argc});
  }
  return Parser().Run(argc, argv);
}

IncompleteWord ParseIncomplete(const std::vector<std::string>& words) {
  return Parser().ParseIncomplete(words);
}

std::string HelpText(const std::string& command) { return Parser().Help(command); }

}  // namespace cadrova::tools
