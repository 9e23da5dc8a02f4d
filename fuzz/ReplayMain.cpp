// Feeds every file under the given folders to the fuzz target once, so that a corpus is a test without libFuzzer.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void Replay(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
  const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(data.data(), data.size());
}

}  // namespace

int main(int argc, char** argv) {
  int replayed = 0;
  LLVMFuzzerTestOneInput(nullptr, 0);
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      Replay(entry.path());
      ++replayed;
    }
  }
  std::printf("%d inputs replayed\n", replayed);
  return replayed > 0 ? 0 : 1;
}
