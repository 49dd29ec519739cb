// These definitions come before everybody else's.
#pragma GCC visibility push(default)
#include <android-base/properties.h>

#include "parser_core.h"
#pragma GCC visibility pop

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

#include "common/json_text.h"
#include "existence_tests.h"
#include "interpose/call.h"
#include "interpose/next_symbol.h"

namespace cadrova::tools {
namespace {

using What = Step::What;

// While the device answers, what it asks in its turn is its own business.
thread_local bool device_answers = false;

auto Ask(auto* question, const auto&... arguments) {
  const struct Answering {
    bool before = std::exchange(device_answers, true);
    ~Answering() { device_answers = before; }
  } answering;
  return question(arguments...);
}

// A step; its answer is shown as `Shown`.
template <class Shown, class Answer, class... Rest>
class Call final : public Step {
 public:
  Call(What of, const char* function, const Answer& answer, const std::string& asked,
       const std::string& under, const Rest&... rest)
      : Step(of, asked, under), function_(function), answer_(answer), rest_(rest...) {}

  void AppendTo(std::string& text) const override {
    std::apply([&](const Rest&... rest) { AppendCall(text, function_, name, key, rest...); },
               rest_);
    if constexpr (!std::is_same_v<Shown, std::monostate>) {
      text += " = ";
      AppendJson(text, Shown{answer_});
    }
  }

 private:
  const char* const function_;
  const Answer& answer_;
  const std::tuple<const Rest&...> rest_;
};

// Passes a call of `own` on and tells of it, with what `add` knows of the step.
template <auto* own, class Shown, class... Rest>
auto PassOn(What what, const char* function, auto add, const std::string& name,
            const std::string& key, const Rest&... rest) {
  auto* const next = Next<own>::Find();
  if (device_answers) return next(name, key, rest...);
  auto answer = Ask(next, name, key, rest...);
  Call<Shown, decltype(answer), Rest...> call(what, function, answer, name, key, rest...);
  add(call, answer);
  Heard(call);
  return answer;
}

template <auto* own>
cadrova_core_bool Test(What what, const char* function, const std::string& map,
                       const std::string& key) {
  const auto add = [](Step& step, cadrova_core_bool& answer) { step.exists = &answer; };
  return PassOn<own, cadrova_core_bool>(what, function, add, map, key);
}

template <auto* own, class Shown, class... Default>
auto Read(ExistenceTest* test_of_kind, const char* function, const std::string& map,
          const std::string& key, const Default&... default_value) {
  const auto add = [=](Step& step, const auto&) { step.test_of_kind = test_of_kind; };
  return PassOn<own, Shown>(What::kRead, function, add, map, key, default_value...);
}

}  // namespace

bool Holds(ExistenceTest* test, const std::string& map, const std::string& key) {
  return cadrova::core::IsTrue(Ask(test, map, key));
}

}  // namespace cadrova::tools

using namespace cadrova::tools;

std::string android::base::GetProperty(const std::string& key, const std::string& default_value) {
  const auto add = [caller = __builtin_return_address(0)](Step& step, std::string& answer) {
    step.caller = caller;
    step.property = &answer;
  };
  return PassOn<android::base::GetProperty, std::string>(What::kProperty, __func__, add, key,
                                                         default_value);
}

#define TEST(name, Value)                                                  \
  cadrova_core_bool name(const std::string& map, const std::string& key) { \
    return Test<name>(What::kTest, __func__, map, key);                    \
  }
#define SIM_TEST(name, Value)                                              \
  cadrova_core_bool name(const std::string& map, const std::string& key) { \
    return Test<name>(What::kSimTest, __func__, map, key);                 \
  }
CADROVA_EXISTENCE_TESTS(TEST, SIM_TEST)

cadrova_core_bool get_bool_from_map(const std::string& map, const std::string& key,
                                    cadrova_core_bool default_value) {
  return Read<get_bool_from_map, cadrova_core_bool>(get_bool_item_exist, __func__, map, key,
                                                    default_value);
}

std::int32_t get_int_from_map(const std::string& map, const std::string& key,
                              std::int32_t default_value) {
  return Read<get_int_from_map, std::int32_t>(get_int_item_exist, __func__, map, key,
                                              default_value);
}

float get_float_from_map(const std::string& map, const std::string& key, float default_value) {
  return Read<get_float_from_map, float>(get_float_item_exist, __func__, map, key, default_value);
}

char* get_str_from_map(const std::string& map, const std::string& key,
                       const std::string& default_value) {
  return Read<get_str_from_map, const char*>(get_str_item_exist, __func__, map, key, default_value);
}

char** get_str_arr_from_map(const std::string& map, const std::string& key) {
  return Read<get_str_arr_from_map, StringArrayBlock>(get_str_arr_item_exist, __func__, map, key);
}

std::int32_t* get_int_arr_from_map(const std::string& map, const std::string& key) {
  return Read<get_int_arr_from_map, IntArrayBlock>(get_int_arr_item_exist, __func__, map, key);
}

char** get_map_arr_from_map(const std::string& map, const std::string& key) {
  return Read<get_map_arr_from_map, PairArrayBlock>(get_map_arr_item_exist, __func__, map, key);
}

void cxx_sim_set_the_cadrova(const std::string& name, const std::string& first,
                             const std::string& second) {
  auto* const next = Next<cxx_sim_set_the_cadrova>::Find();
  if (device_answers) return next(name, first, second);
  Ask(next, name, first, second);
  constexpr std::monostate none;
  Call<std::monostate, std::monostate, std::string> call(What::kHandOver, __func__, none, name,
                                                         first, second);
  Heard(call);
}
