// Runs a fuzz target once over each file named, and over each file of each folder named: the
// target as a plain test, without the fuzzer.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/fuzz/Fuzz.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesOf(const fs::path& place) {
  if (!fs::is_directory(place)) return {place};
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(place)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int count, char** arguments) {
  int replayed = 0;
  for (const char* const place : std::vector<const char*>(arguments + 1, arguments + count)) {
    for (const fs::path& file : FilesOf(place)) {
      std::ifstream stream(file, std::ios::binary);
      if (!stream) {
        std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        return 1;
      }
      // Exactly as large as the content, so that a read beyond its end is seen.
      const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
      std::fprintf(stderr, "%s: %zu bytes\n", file.c_str(), bytes.size());
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++replayed;
    }
  }
  std::printf("%d inputs replayed\n", replayed);
  return replayed > 0 ? 0 : 1;
}
