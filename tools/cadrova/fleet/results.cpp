#include "fleet/results.h"

#include <algorithm>

#include "lookup/recording.h"

using cadrova::tools::Holds;
using cadrova::tools::Step;

bool Answer::IsLike(const Answer& other) const {
  return map.has_value() == other.map.has_value() && ToText(value) == ToText(other.value);
}

bool Answers::AreLike(const Answers& others) const {
  const auto is_like = [&](const auto& held) {
    const auto found = others.of_maps_.find(held.first);
    return found != others.of_maps_.end() && held.second.IsLike(found->second);
  };
  return of_maps_.size() == others.of_maps_.size() && std::ranges::all_of(of_maps_, is_like);
}

const Answer& Answers::Take(Chain& chain) const {
  while (!chain.empty()) {
    const auto found = of_maps_.find(chain.front());
    chain = chain.subspan(1);
    if (found != of_maps_.end()) return found->second;
  }
  return rest_;
}

Chains::Chains(std::string family, const Fleet& fleet) : family_(std::move(family)), fleet_(fleet) {
  const Question question = ToQuestion(family_, "int", "");
  Progress progress("asking which maps each device asks");
  Silently([&] {
    for (std::size_t device = 0; device < fleet_.size(); ++device) {
      progress.Show(device, fleet_.size());
      BecomeDevice(device);
      cadrova::tools::Chain chain;
      Listen(
          [&](Step& step) {
            if (step.exists != nullptr) *step.exists = 0;
            chain.Add(step);
          },
          question.ask);
      for (const auto& [name, is_sim] : chain.maps()) asked_.push_back(Id(name, is_sim, device));
      ends_.push_back(asked_.size());
    }
  });
}

Chain Chains::Of(std::size_t region, std::size_t carrier) const {
  const std::size_t device = region * fleet_.carriers.size() + carrier;
  return Chain(asked_).subspan(ends_[device], ends_[device + 1] - ends_[device]);
}

std::vector<std::string> Chains::Names() const {
  std::vector<std::string> names(maps_.size());
  std::ranges::transform(maps_, names.begin(), &Map::name);
  return names;
}

Answers Chains::Ask(const std::string& kind, const std::string& key,
                    const std::vector<std::string>* maps) const {
  const Question question = ToQuestion(family_, kind, key);
  Answers answers;
  const auto add = [&](std::uint32_t id) {
    const auto& [name, is_sim, device] = maps_[id];
    if (Holds(TestOf(question.default_value, is_sim), name, key)) {
      answers.Add(id, AskAsIfHeldBy(&maps_[id], question));
    }
  };
  Silently([&] {
    answers.AddRest(AskAsIfHeldBy(nullptr, question));
    if (maps == nullptr) {
      for (std::uint32_t id = 0; id < maps_.size(); ++id) add(id);
      return;
    }
    for (const std::string& map : *maps) {
      for (const auto& ids : ids_) {
        if (const auto found = ids.find(map); found != ids.end()) add(found->second);
      }
    }
  });
  return answers;
}

std::uint32_t Chains::Id(const std::string& map, bool is_sim, std::size_t device) {
  const auto id = static_cast<std::uint32_t>(maps_.size());
  const auto [place, is_new] = ids_[is_sim ? 1 : 0].try_emplace(map, id);
  if (is_new) maps_.push_back({map, is_sim, device});
  return place->second;
}

void Chains::BecomeDevice(std::size_t device) const {
  OverrideProperty(kRegionCode, fleet_.regions[device / fleet_.carriers.size()]);
  OverrideProperty(kCarrierCode, fleet_.carriers[device % fleet_.carriers.size()]);
}

// What the device is answered that asks `map`, while it is told that no other holds the item.
Answer Chains::AskAsIfHeldBy(const Map* map, const Question& question) const {
  BecomeDevice(map == nullptr ? 0 : map->device);
  cadrova::tools::Chain chain;
  Answer answer;
  Listen(
      [&](Step& step) {
        const bool is_it = map != nullptr && step.name == map->name &&
                           (step.what == Step::What::kSimTest) == map->is_sim;
        if (step.exists != nullptr && !is_it) *step.exists = 0;
        chain.Add(step);
      },
      [&] { answer.value = question.ask(); });
  const auto* from = chain.answered_by();
  if (from != nullptr) answer.map = from->name;
  answer.place = chain.maps().size() - 1;
  return answer;
}
