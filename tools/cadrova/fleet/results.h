// What every device of a fleet is answered. The library is asked, of each device, which maps it
// asks; and of each feature, what a device is answered whose chain meets this map first: so all
// devices that do are answered at once.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "fleet/devices.h"
#include "fleet/feature_index.h"
#include "lookup/query.h"
#include "output/console.h"

struct Answer {
  Value value;
  std::optional<std::string> map;  // nothing where no map holds the item
  std::size_t place = 0;           // the map's in its chain

  // As programs see them: where the answer came from is no part of it, but whether it is held is.
  bool IsLike(const Answer& other) const;
};

// The maps that one device asks, in order.
using Chain = std::span<const std::uint32_t>;

// The answers to one question.
class Answers {
 public:
  bool are_held() const { return !of_maps_.empty(); }

  // Whether all devices are answered as by `others`.
  bool AreLike(const Answers& others) const;

  void AddRest(Answer answer) { rest_ = std::move(answer); }
  void Add(std::uint32_t map, Answer answer) { of_maps_.emplace(map, std::move(answer)); }

  // What a device with this chain is answered; the chain then begins behind the map that answers.
  const Answer& Take(Chain& chain) const;
  const Answer& Of(Chain chain) const { return Take(chain); }

 private:
  std::unordered_map<std::uint32_t, Answer> of_maps_;
  Answer rest_;  // of devices that come to none of these
};

// The chains of all devices, by one family of lookups.
class Chains {
 public:
  Chains(std::string family, const Fleet& fleet);

  const std::string& family() const { return family_; }
  const Fleet& fleet() const { return fleet_; }

  // The device of `region` and `carrier`, which count from 0.
  Chain Of(std::size_t region, std::size_t carrier) const;

  // The names of all maps that are asked.
  std::vector<std::string> Names() const;

  // The answers as things are with the core now. Only `maps` may hold the item, where they are
  // given.
  Answers Ask(const std::string& kind, const std::string& key,
              const std::vector<std::string>* maps = nullptr) const;

 private:
  struct Map {
    std::string name;
    bool is_sim;         // asked by the tests of SIM data
    std::size_t device;  // one that asks it
  };

  std::uint32_t Id(const std::string& map, bool is_sim, std::size_t device);
  void BecomeDevice(std::size_t device) const;
  Answer AskAsIfHeldBy(const Map* map, const Question& question) const;

  std::string family_;
  const Fleet& fleet_;
  std::vector<Map> maps_;
  std::unordered_map<std::string, std::uint32_t> ids_[2];  // of maps_, by name; of SIM tests
  std::vector<std::uint32_t> asked_;                       // the chains, one behind the other
  std::vector<std::size_t> ends_ = {0};                    // of each chain in asked_
};
