// The cadrova command as its users run it: arguments in; standard output, standard error and exit
// status out.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace {

struct Outcome {
  std::string out, err;
  int status;
};

std::string Contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string TempFile(const std::string& name, const std::string& contents) {
  const std::string path = testing::TempDir() + "cadrova_command_test." + name;
  std::ofstream(path, std::ios::binary) << contents;
  return path;
}

// `arguments` as a shell would split them; `setting` as in `NAME=value`.
Outcome Cadrova(const std::string& arguments, const std::string& setting = "") {
  const std::string out = TempFile("out", "");
  const std::string err = TempFile("err", "");
  const std::string command =
      setting + " " CADROVA_COMMAND " " + arguments + " >" + out + " 2>" + err;
  const int status = std::system(command.c_str());
  return {Contents(out), Contents(err), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

TEST(Command, PrintsTheValueAlone) {
  const struct {
    const char* arguments;
    const char* out;
  } cases[] = {
      {"bool calling.volte", "false\n"},
      {"int camera.max_zoom", "8\n"},
      {"float camera.default_exposure", "0.5\n"},
      {"float ui.font_scale", "1\n"},
      {"string ui.theme", "slate\n"},
      {"string calling.voicemail_number none", "\n"},
      {"string-array camera.modes", "photo\nvideo\nportrait\nnight\n"},
      {"int-array radio.lte_bands", "1\n3\n7\n20\n"},
      {"map-array apn.list", "internet=default,supl\nmms=mms\n"},
      {"bool calling.volte --json", "false\n"},
      {"float ui.font_scale --json", "1.0\n"},
      {"string ui.theme --json", "\"slate\"\n"},
      {"int-array radio.lte_bands --json", "[1,3,7,20]\n"},
      {"map-array apn.list --json", "[[\"internet\",\"default,supl\"],[\"mms\",\"mms\"]]\n"},
      // Missing items: the default, or what stands in for one.
      {"bool nope", "false\n"},
      {"bool nope true", "true\n"},
      {"int nope -7", "-7\n"},
      {"int '' 2147483647", "2147483647\n"},
      {"float nope 1.1", "1.1\n"},
      {"float nope -.5", "-0.5\n"},
      {"float nope 16777216", "16777216\n"},
      {"float nope -inf", "-inf\n"},
      {"string nope", "\n"},
      {"string nope 'a b'", "a b\n"},
      {"string nope -- --x", "--x\n"},
      {"string-array nope", ""},
      {"int-array nope --json", "[]\n"},
  };
  for (const auto& [arguments, out] : cases) {
    const Outcome outcome = Cadrova(std::string("get default ") + arguments);
    EXPECT_EQ(outcome.out, out) << arguments;
    EXPECT_EQ(outcome.err, "") << arguments;
    EXPECT_EQ(outcome.status, 0) << arguments;
  }
}

TEST(Command, AsksEveryFamilyForAnyRegionCarrierAndSim) {
  const struct {
    const char* arguments;
    const char* out;
    const char* err;
  } cases[] = {
      {"region int-array radio.lte_bands --region EU --json", "[1,3,7,8,20,28]\n",
       "getRegionCustIntArrayFeature exist with the region ! \n"},
      {"region int calling.ring_seconds --region eu", "30\n",
       "getRegionCustIntFeature do not exist with the region : 30 \n"},
      {"carrier string ui.theme --carrier N7", "ember\n",
       "getCotaCustStringFeature exist with the carrier : ember \n"},
      {"carrier bool nope true", "true\n",
       "getCotaCustBooleanFeature do not exist with the carrier : 1 \n"},
      {"carrier-region float radio.signal_smoothing --carrier X1 --region EU", "0.35\n",
       "getCotaRegionCustFloatFeature exist with the carrier & region : 0.350000 \n"},
      {"carrier-region map-array apn.list --region JP", "jp-internet=default\n",
       "getCotaRegionCustStringArrayFeature exist with the region ! \n"},
      {"sim int calling.ring_seconds --carrier X1", "15\n",
       "getSimCustIntFeature exist with the carrier : 15 \n"},
      {"sim int calling.ring_seconds", "35\n",
       "getSimCustIntFeature do not exist with the carrier : 35 \n"},
      {"sim string nope --region EU", "\n",
       "getCotaRegionCustStringFeature do not exist with the carrier or region :  \n"},
      {"sim string-array icons --carrier X1 --sim icons='[\"a\"]' --sim x=y", "a\n",
       "getSimCustStringArrayFeature exist with the carrier ! \n"},
      // From the property store, and in front of it.
      {"region string ui.theme", "indigo\n",
       "getRegionCustStringFeature exist with the region : indigo \n"},
      {"region string ui.theme --region ''", "slate\n",
       "getRegionCustStringFeature do not exist with the region : slate \n"},
  };
  const std::string properties = TempFile("props", "# a device\n\nro.orvel.region=JP\n");
  for (const auto& [arguments, out, err] : cases) {
    // The device has a region only where no other is given.
    const bool on_device = std::string(arguments).starts_with("region string");
    const Outcome outcome = Cadrova(std::string("get ") + arguments,
                                    on_device ? "CADROVA_HOST_PROPS=" + properties : "");
    EXPECT_EQ(outcome.out, out) << arguments;
    EXPECT_EQ(outcome.err, err) << arguments;
    EXPECT_EQ(outcome.status, 0) << arguments;
  }
}

TEST(Command, RefusesWithOneLineThatSaysWhy) {
  const std::string malformed = TempFile("bad.toml", "[DEFAULT]\nx = 2026-11-24\n");
  const std::string not_utf8 = TempFile("latin.toml", "[DEFAULT]\nx = \"\xE9\"\n");
  const struct {
    std::string arguments;
    std::string what;
  } cases[] = {
      {"", "subcommand is required"},
      {"get default int", "KEY is required"},
      {"get defalt int k",
       "'defalt' is no family; use one of: default, region, carrier, carrier-region, sim"},
      {"get default integer k",
       "'integer' is no kind; use one of: bool, int, float, string, "
       "string-array, int-array, map-array"},
      {"get default int k 12abc", "default '12abc' is no int"},
      {"get default int k ''", "default '' is no int"},
      {"get default int k 3000000000", "out of the range of a 32-bit int"},
      {"get default bool k 1", "default '1' is no bool"},
      {"get default float k 1.5x", "default '1.5x' is no float"},
      {"get default float k 1e39", "out of the range of a 32-bit float"},
      {"get default string-array k x", "default 'x' is refused"},
      {"get default int k 1 -2", "'-2' was not expected"},
      {"get default int k --jsn", "'--jsn' was not expected"},
      {"get default float k inf --json", "JSON has no inf"},
      {"get default string k '\xE9' --json", "not UTF-8"},
      {"get sim float k", "the sim family has no float"},
      {"get sim string k x", "the sim family takes no default for a string"},
      {"get sim int k --sim x", "--sim 'x' is no KEY=VALUE"},
      {"get default int k --data /nowhere.toml", "/nowhere.toml: can't read"},
      {"get default int k --data /tmp", "/tmp: can't read"},
      {"get default int k --data " + malformed, malformed + ":2:5: a date"},
      {"get default int k --data " + not_utf8, not_utf8 + ":2:5: "},
  };
  for (const auto& [arguments, what] : cases) {
    const Outcome outcome = Cadrova(arguments);
    EXPECT_EQ(outcome.out, "") << arguments;
    EXPECT_NE(outcome.err.find(what), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    EXPECT_EQ(outcome.status, 2) << arguments;
  }
}

TEST(Command, TakesItsDataFromTheFileNamedFirst) {
  const std::string one = TempFile("one.toml", "[DEFAULT]\nx = 1\n");
  const std::string two = TempFile("two.toml", "[DEFAULT]\nx = 2\n");
  EXPECT_EQ(Cadrova("get default int x --data " + one, "CADROVA_HOST_DATA=" + two).out, "1\n");
  EXPECT_EQ(Cadrova("get default int x", "CADROVA_HOST_DATA=" + two).out, "2\n");
  EXPECT_EQ(Cadrova("get default int camera.max_zoom", "CADROVA_HOST_DATA=").out, "8\n");
}

TEST(Command, StopsOnPropertiesThatItCannotRead) {
  const std::string bad = TempFile("bad_props", "a=b\nno equals sign\n");
  for (const auto& [file, what] : {std::pair(bad, bad + ":2: not a key=value line"),
                                   {"/nowhere", std::string("/nowhere: can't read")}}) {
    const Outcome outcome = Cadrova("get region int k", "CADROVA_HOST_PROPS=" + file);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.find(what), 0U) << outcome.err;
    EXPECT_EQ(outcome.status, 2);
  }
}

TEST(Command, SaysSoWhereTheValueCannotBeWritten) {
  const std::string err = TempFile("err", "");
  const int status = std::system(
      ("( " CADROVA_COMMAND " get default string ui.theme >/dev/full ) 2>" + err).c_str());
  EXPECT_EQ(WEXITSTATUS(status), 2);
  EXPECT_EQ(Contents(err), "cadrova: can't write the value to standard output\n");
}

}  // namespace
