// Options that several commands share.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "commands/command_line.h"
#include "fleet/devices.h"
#include "fleet/fleet_file.h"
#include "lookup/recording.h"

namespace cadrova::tools {

// --data
class DataOption {
 public:
  void DeclareOptions(Options& options);

  // Makes the core use the file, if one is given. If no variable names one either, says that the
  // sample is used. Returns the file in use as it was named, or nothing if nobody named one.
  std::vector<std::string> Apply() const;

 private:
  std::optional<std::string> file_;
};

// --fleet
class FleetFileOption {
 public:
  void DeclareOptions(Options& options);

  // The given file, or else the first cadrova.toml beside one of the customization files, or NULL.
  // Reads each file once, as it may be a pipe. It lives as long as this option. Throws a Failure.
  const FleetFile* Read(const std::vector<std::string>& data_files);

 private:
  std::optional<std::string> file_;
  std::map<std::string, FleetFile> read_;  // by path
};

// The options of commands that look at one device: --data, --fleet, --region and --carrier.
class DeviceOptions {
 public:
  void DeclareOptions(Options& options);

  // Makes the core use the data, and the library read the given codes.
  void Apply();

  bool has_codes() const { return region_ || carrier_; }

  // After a lookup: says on standard error which code that was given, or that the lookup read, is
  // not one of the fleet file, or may be mistyped.
  void WarnOfCodes(const Recording& recording) const;

  // The same for the codes of a device that an argument names.
  void WarnOfDevice(const Device& device) const;

 private:
  // A code, and what it is called in messages.
  struct Code {
    std::string name, code;
  };
  void Warn(const std::optional<Code>& region, const std::optional<Code>& carrier) const;

  std::optional<std::string> region_, carrier_;
  DataOption data_;
  FleetFileOption fleet_;
  const FleetFile* file_ = nullptr;
  Fleet used_codes_;  // of the maps
};

// --sim
class SimOption {
 public:
  void DeclareOptions(Options& options);

  // Sets the items for the current codes. Throws a Failure.
  void Apply() const;

 private:
  std::vector<std::string> items_;
};

// The devices that the options and the fleet file give.
struct FleetChoice {
  const FleetFile* file;                                      // NULL if there is none
  std::optional<std::vector<std::string>> regions, carriers;  // of the options

  // Whether no code comes from the names of maps.
  bool are_codes_declared() const {
    return (regions || (file != nullptr && file->regions)) &&
           (carriers || (file != nullptr && file->carriers));
  }

  // The codes of the options, or else of the fleet file, or else in the names of the maps, in that
  // order, and the devices that exist. Says on standard error which code of the options may be
  // mistyped. Throws a Failure if the fleet file lists devices, and none has a given code.
  Fleet ToFleet(const std::vector<std::string>& map_names) const;
};

// --fleet, --regions and --carriers
class FleetOptions {
 public:
  void DeclareOptions(Options& options);

  // For data of these customization files, as they were named. The fleet file beside the first that
  // has one counts. The result is valid as long as these options.
  FleetChoice Choose(const std::vector<std::string>& data_files);

 private:
  FleetFileOption file_;
  std::optional<std::string> regions_, carriers_;
};

// Throws a Failure if more than one of the named options is given.
void RefuseCombination(const std::vector<std::pair<std::string, bool>>& options);

}  // namespace cadrova::tools
