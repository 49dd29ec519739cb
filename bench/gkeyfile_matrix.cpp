// Prints the same as `cadrova matrix carrier-region int KEY --csv`, but looks up the key in GLib's
// GKeyFile, one device after the other.
//
//   gkeyfile_matrix KEY_FILE REGIONS CARRIERS KEY
//
// REGIONS and CARRIERS are the numbers that were given to scripts/make-fleet. The unset codes are
// added.

#include <glib.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Codes(const std::string& front, int count) {
  std::vector<std::string> codes = {""};
  for (int i = 1; i <= count; ++i) codes.push_back(front + std::to_string(i));
  return codes;
}

}  // namespace

int main(int argc, char** argv) {
  GKeyFile* const file = g_key_file_new();
  if (argc != 5 || !g_key_file_load_from_file(file, argv[1], G_KEY_FILE_NONE, nullptr)) {
    std::fprintf(stderr,
                 "usage: gkeyfile_matrix KEY_FILE REGIONS CARRIERS KEY, with a readable file\n");
    return 2;
  }
  const char* const key = argv[4];
  std::puts("region,carrier,value,map");
  for (const std::string& region : Codes("R", std::atoi(argv[2]))) {
    for (const std::string& carrier : Codes("C", std::atoi(argv[3]))) {
      const std::string in_carrier = "COTA_" + carrier, in_both = in_carrier + "_" + region;
      for (const std::string& map : {in_both, in_carrier, region, std::string("DEFAULT")}) {
        if (!g_key_file_has_key(file, map.c_str(), key, nullptr)) continue;
        const int value = g_key_file_get_integer(file, map.c_str(), key, nullptr);
        std::printf("\"%s\",\"%s\",%d,\"%s\"\n", region.c_str(), carrier.c_str(), value,
                    map.c_str());
        break;
      }
    }
  }
}
