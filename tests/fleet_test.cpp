// What the cadrova command says of every device at once.

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "command.h"

namespace {

const std::string kFleet = TemporaryFile("fleet.toml", R"([DEFAULT]
ring = 30
name = 'a "b"'
list = []
"<&" = false
[EU]
ring = 25
[JP]
[COTA_X1]
ring = 25
[COTA_X1_EU]
ring = 40
[COTA_N_7_EU]
list = ["a text", "of some width"]
[SIM_X1]
ring = 15
[SIM_DEFAULT]
name = "s"
)");

struct Case {
  std::string line, out, err = {};
  int status = 0;
};

void ExpectEach(const std::vector<Case>& cases) {
  for (const auto& [line, out, err, status] : cases) {
    SCOPED_TRACE(line);
    Expect(Cadrova(line, "CADROVA_HOST_DATA=" + kFleet), out, err, status);
  }
}

TEST(Fleet, IsListed) {
  ExpectEach({
      {"list", R"("<&"  bool          DEFAULT
list  string-array  COTA_N_7_EU, DEFAULT
name  string        DEFAULT, SIM_DEFAULT
ring  int           COTA_X1, COTA_X1_EU, DEFAULT, EU, SIM_X1
)"},
      {"list|?i*|--json", R"([
{"key":"list","kind":"string-array","maps":["COTA_N_7_EU","DEFAULT"]},
{"key":"ring","kind":"int","maps":["COTA_X1","COTA_X1_EU","DEFAULT","EU","SIM_X1"]}
]
)"},
      {"list|x", "", "cadrova: no key is like 'x'\n", 1},
      {"list|x|--json", "[]\n", "cadrova: no key is like 'x'\n", 1},
  });
}

TEST(Fleet, StandsSideBySide) {
  ExpectEach({
      {"matrix|carrier-region|int|ring", R"(        carrier
region  "", N_7     X1
"", JP  30 DEFAULT  25 COTA_X1
EU      25 EU       40 COTA_X1_EU
)"},
      {"matrix|sim|int|ring|--regions|JP,EU|--carriers|X1,,X1", R"(        carrier
region  X1         ""
JP      15 SIM_X1  30 DEFAULT
EU      15 SIM_X1  25 EU
)"},
      {"matrix|carrier-region|string-array|list", R"(        carrier
region  "", X1      N_7
"", JP  [] DEFAULT  [] DEFAULT
EU      [] DEFAULT  (1) COTA_N_7_EU

(1)  ["a text","of some width"]
)"},
      {"matrix|carrier-region|string-array|list|--csv|--regions|,EU|--carriers|N_7",
       R"(region,carrier,value,map
"","N_7","[]","DEFAULT"
"EU","N_7","[""a text"",""of some width""]","COTA_N_7_EU"
)"},
      {"matrix|default|string|name|--csv|--regions|\"|--carriers|",
       "region,carrier,value,map\n\"\"\"\",\"\",\"a \"\"b\"\"\",\"DEFAULT\"\n"},
      {"matrix|region|int|nope|--csv|--regions||--carriers|",
       "region,carrier,value,map\n\"\",\"\",0,\n", "cadrova: no map holds nope as int\n", 1},
      {"matrix|region|bool|nope",
       "              carrier\nregion        every carrier\nevery region  no map\n",
       "cadrova: no map holds nope as bool\n", 1},
      {"matrix", "", "cadrova: name FAMILY, KIND and KEY; or none of them, with --html\n", 2},
      {"matrix|region|int|--html|page", "",
       "cadrova: name FAMILY, KIND and KEY; or none of them, with --html\n", 2},
      {"matrix|region|int|ring|--json|--csv", "",
       "cadrova: --json, --csv and --html exclude each other\n", 2},
      {"matrix|region|int|ring|--html|/nowhere/page", "",
       "cadrova: --html /nowhere/page: No such file or directory\n", 2},
  });
}

// Every cell is what that device alone is answered, and from there.
TEST(Fleet, IsAnsweredAsEachDeviceIs) {
  for (const std::string question :
       {"default|bool|calling.volte", "region|float|radio.signal_smoothing",
        "carrier|map-array|apn.list", "carrier-region|string-array|calling.emergency_numbers",
        "carrier-region|string|ui.theme", "sim|int|calling.ring_seconds",
        "sim|string|calling.voicemail_number", "sim|bool|nope"}) {
    std::string cells;
    for (const std::string region : {"", "EU", "JP", "US"}) {
      for (const std::string carrier : {"", "N7", "X1"}) {
        const std::string device = "|--region|" + region + "|--carrier|" + carrier;
        const std::string explained = Cadrova("explain|--json|" + question + device, "A=").out;
        std::smatch found;
        const std::regex answer(R"("value":(.*),"answered_by":([^,]*),)");
        ASSERT_TRUE(std::regex_search(explained, found, answer)) << explained;
        cells += cells.empty() ? "[\n" : ",\n";
        cells += R"({"region":")" + region + R"(","carrier":")" + carrier + R"(","value":)" +
                 found.str(1) + R"(,"map":)" + found.str(2) + '}';
      }
    }
    EXPECT_EQ(Cadrova("matrix|--json|" + question, "A=").out, cells + "\n]\n");
  }
}

TEST(Fleet, IsTakenInAtALook) {
  std::string maps = "[DEFAULT]\nk = 0\n", others;
  for (int i = 10; i < 40; ++i) {
    const std::string code = std::to_string(i), region = 'R' + code, carrier = 'C' + code;
    maps += '[' + region + "]\n[COTA_" + carrier + '_' + region + "]\nk = " + code + '\n';
    others +=
        region + "     " + carrier + "      " + code + " COTA_" + carrier + '_' + region + '\n';
  }
  ExpectEach({{"matrix|carrier-region|int|k|--data|" + TemporaryFile("large.toml", maps),
               "              carrier\nregion        every carrier\nevery region  0 DEFAULT\n\n"
               "region  carrier  but these\n" +
                   others}});
}

TEST(Fleet, IsComparedWithWhatAnotherFileMakesOfIt) {
  const std::string maps = "[DEFAULT]\nk = 1\nlist = []\n[EU]\n[JP]\n[SIM_X1]\nk = 2\n";
  const auto diff = [&](const std::string& more, const std::string& options = "") {
    return "diff|" + TemporaryFile("old.toml", maps) + '|' +
           TemporaryFile("new.toml", maps + more) + options;
  };
  ExpectEach({{diff("[COTA_X1_EU]\nk = 1\n[DEFAULT.list2]\n"), ""}});  // from elsewhere, the same
  ExpectEach({{diff("[COTA_X1]\nk = 3\n"),
               "int k by carrier-region\n  1 DEFAULT -> 3 COTA_X1: X1 in every region\n", "", 1}});
  ExpectEach({{diff("[COTA_X1_EU]\nk = 3\nnew = 'n'\n[COTA_N7]\nk = 5\n"),
               "int k by carrier-region\n"
               "  1 DEFAULT -> 5 COTA_N7: N7 in every region\n"
               "  1 DEFAULT -> 3 COTA_X1_EU: X1 in EU\n"
               "int k by sim\n  1 DEFAULT -> 5 COTA_N7: N7 in every region\n"
               "string new by carrier-region and sim\n  no map -> \"n\" COTA_X1_EU: X1 in EU\n",
               "", 1}});
  ExpectEach({{diff("[COTA_X1_EU]\nk = 3\n", "|--family|sim"), ""}});
  ExpectEach(
      {{diff("[COTA_X1]\nk = 3\n[COTA_X1_F]\nk = 1\n", "|--regions|A,B,C,D,F"),
        "int k by carrier-region\n  1 DEFAULT -> 3 COTA_X1: X1 in every region but F\n", "", 1}});
  ExpectEach({{diff("[COTA_X1_EU]\nk = 3\n", "|--json|--regions|EU,JP|--carriers|X1"),
               R"([
{"family":"carrier-region","kind":"int","key":"k","region":"EU","carrier":"X1","old":{"value":1,"map":"DEFAULT"},"new":{"value":3,"map":"COTA_X1_EU"}}
]
)",
               "", 1}});
  ExpectEach({{diff("", "|--json"), "[]\n"}});
  const std::string bad = TemporaryFile("bad.toml", "x\n");
  ExpectEach(
      {{"diff|" + kFleet + '|' + bad, "",
        bad + ":1:2: Error while parsing key-value pair: expected '=', saw '\\n'\n", 2},
       {"diff|/nowhere|" + kFleet, "", "/nowhere: can't be read: No such file or directory\n", 2}});
}

TEST(Fleet, HasNoMistakeUnfound) {
  const std::string data = "[DEFAULT]\nring.seconds = 30\n[COTA_X1]\nring.seconds = 25\n";
  const std::string codes = "|--regions|,EU|--carriers|,X1";
  const struct {
    std::string mistake, found;
    int status = 0;
    std::string options = {};
  } cases[] = {
      // clang-format off
      {"[COTA_X1_EU]\nring.seconds = 40", "", 0, codes},
      {"[COTA_EU_X1]\nring.seconds = 40", "5:2: error: no device asks COTA_EU_X1; did you mean COTA_X1_EU?\n", 1, codes},
      {"[cota_x1_eu]\nring.seconds = 40", "5:2: error: no device asks cota_x1_eu; did you mean COTA_X1_EU?\n", 1, codes},
      {"['COTA_X1_EU ']\nring.seconds = 40", "5:2: error: no device asks \"COTA_X1_EU \"; did you mean COTA_X1_EU?\n", 1, codes},
      {"[COTA_1X_EU]\nring.seconds = 40", "5:2: error: no device asks COTA_1X_EU; did you mean COTA_X1_EU?\n", 1, codes},
      {"[ELSEWHERE.ring]\nseconds = 40", "5:2: error: no device asks ELSEWHERE\n", 1, codes},
      {"[COTA_X1_EU]\nring.second = 40", "6:6: warning: only COTA_X1_EU holds ring.second; did you mean ring.seconds?\n"},
      {"[COTA_X1_EU]\nRing.Seconds = 40", "6:6: warning: only COTA_X1_EU holds Ring.Seconds; did you mean ring.seconds?\n"},
      {"[COTA_X1_EU]\nring.secnods = 40", "6:6: warning: only COTA_X1_EU holds ring.secnods; did you mean ring.seconds?\n"},
      {"[COTA_X1_EU.ring]\nring.seconds = 40", "6:6: warning: only COTA_X1_EU holds ring.ring.seconds; did you mean ring.seconds?\n"},
      {"[COTA_X1_EU]\nring.seconds = '40'", "6:6: error: ring.seconds is string here, but int in DEFAULT\n", 1},
      {"[COTA_X1_EU]\nring.seconds = 40.0", "6:6: error: ring.seconds is float here, but int in DEFAULT\n", 1},
      {"[COTA_X1_EU]\nring.seconds = []", "6:6: error: ring.seconds is an empty list here, but int in DEFAULT\n", 1},
      {"[SIM_X1]\nring.seconds = 4.0\nfloat = 1.5", "6:6: error: ring.seconds is a float, for which nothing asks a SIM map\n" "6:6: error: ring.seconds is float here, but int in DEFAULT\n" "7:1: error: float is a float, for which nothing asks a SIM map\n", 1},
      {"[COTA_X1_EU]\nring.seconds = 25", "6:6: warning: every device gets the same ring.seconds without this\n"},
      {"[SIM_X1]\nring.seconds = 25", "6:6: warning: every device gets the same ring.seconds without this\n"},
      // A region called as a carrier's map, whose devices ask that map twice; a value of use by region alone; a list of use as ints alone.
      {"", "", 0, "|--regions|COTA_X1|--carriers|X1"},
      {"[COTA_N7]\nring.seconds = 30", "6:6: warning: every device gets the same ring.seconds without this\n", 0, "|--regions|COTA_N7|--carriers|N7,X1"},
      {"[EU]\nring.seconds = 35", "", 0, "|--regions|EU|--carriers|X1"},
      {"l.m = []\n[DEFAULT.l]\nm = []\n[EU]\nl.m = [1]\n[COTA_N7]\nl.m = ['a']", "11:3: error: l.m is string-array here, but int-array in EU\n", 1},
      {"ab = 1\n[EU]\nab = 1\n[JP]\nac = 1", "5:1: warning: ab is not in DEFAULT\n9:1: warning: ac is not in DEFAULT\n"},
      {"[COTA_X1_EU]\nother = 40", "6:1: warning: other is not in DEFAULT\n"},
      {"[EU]\n[eu]", "6:2: warning: eu differs from EU only by case, order or signs\n"},
      {"[COTA_X1_EU]\n[COTA_EU_X1]\nring.seconds = 1", "6:2: warning: COTA_EU_X1 differs from COTA_X1_EU only by case, order or signs\n"},
      {"[A]\nx", "6:2: error: Error while parsing key-value pair: expected '=', saw '\\n'\n", 1},
      // clang-format on
  };
  for (const auto& [mistake, found, status, options] : cases) {
    SCOPED_TRACE(mistake);
    const std::string file = TemporaryFile("checked.toml", data + mistake + '\n');
    Outcome outcome = Cadrova("check|" + file + options);
    outcome.out = std::regex_replace(outcome.out, std::regex(file + ':'), "");
    Expect(outcome, found, "", status);
  }
  ExpectEach({{"check|/nowhere", "", "/nowhere: can't be read: No such file or directory\n", 2}});
  for (const std::string given : {"", "|--regions|EU,JP,US|--carriers|X1,N7"}) {
    Expect(Cadrova("check" + given, "A="), "", "");
  }
}

TEST(Fleet, IsOnAPage) {
  const std::string page = TemporaryFile("page.html", "");
  ExpectEach({{"matrix|--html|" + page, ""}});
  std::string text = Contents(page);
  text = text.substr(text.find("<h1>"), text.find("<script>") - text.find("<h1>"));
  text = std::regex_replace(text, std::regex("class=\"?(p.|none)\"?[^>]*>"), ">$1: ");
  text = std::regex_replace(text, std::regex("(<[^>]*>|\\s)+"), " ");
  EXPECT_EQ(
      text,
      " How every device is customized " + kFleet +
          R"( regions unset , EU, JP carriers unset , N_7, X1 Filter p0: SIM_‹carrier› p1: SIM_DEFAULT p2: COTA_‹carrier›_‹region› p3: COTA_‹carrier› p4: ‹region› p5: DEFAULT none: no map holds it &quot;&lt;&amp;&quot; bool by carrier-region and sim region every carrier every region p5: false DEFAULT list string-array by carrier-region and sim region unset , X1 N_7 unset , JP p5: [] DEFAULT p5: [] DEFAULT EU p5: [] DEFAULT p2: [&quot;a text&quot;,&quot;of some width&quot;] COTA_N_7_EU name string by carrier-region region every carrier every region p5: &quot;a \&quot;b\&quot;&quot; DEFAULT by sim region every carrier every region p1: &quot;s&quot; SIM_DEFAULT ring int by carrier-region region unset , N_7 X1 unset , JP p5: 30 DEFAULT p3: 25 COTA_X1 EU p4: 25 EU p2: 40 COTA_X1_EU by sim region unset , N_7 X1 unset , JP p5: 30 DEFAULT p0: 15 SIM_X1 EU p4: 25 EU p0: 15 SIM_X1 )");
}

}  // namespace
