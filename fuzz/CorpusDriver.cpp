// Runs a libFuzzer harness over a bounded, reproducible random corpus: the harness's own seed
// texts, random byte strings, and mutations of the seeds (flipped, inserted, deleted and
// duplicated bytes, spliced seeds). Used under the sanitizers, where g++ has no libFuzzer: by
// `make test` with a short corpus and by `make fuzz` (scripts/fuzz.sh) with long ones; the same
// harness builds for libFuzzer with clang.
//
//   fuzz_<name> [--runs N] [--seed S]     N random inputs (10,000 unless given) from seed S
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "FuzzSeeds.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

__attribute__((weak)) std::vector<std::string> QuorvaneFuzzSeeds() { return {}; }

namespace {

std::string RandomBytes(std::mt19937_64& rng, std::size_t maxLength) {
  std::uniform_int_distribution<std::size_t> length(0, maxLength);
  std::uniform_int_distribution<int> byte(0, 255);
  std::string out(length(rng), '\0');
  for (char& c : out) c = static_cast<char>(byte(rng));
  return out;
}

std::string Mutate(std::mt19937_64& rng, std::string input, const std::vector<std::string>& seeds) {
  std::uniform_int_distribution<int> kind(0, 6);
  std::uniform_int_distribution<int> byte(0, 255);
  const int rounds = 1 + static_cast<int>(rng() % 8);
  for (int r = 0; r < rounds; ++r) {
    const std::size_t at = input.empty() ? 0 : rng() % (input.size() + 1);
    switch (kind(rng)) {
      case 0:
        if (at < input.size()) input[at] = static_cast<char>(byte(rng));
        break;
      case 1:
        input.insert(at, 1, static_cast<char>(byte(rng)));
        break;
      case 2:
        if (at < input.size()) input.erase(at, 1 + rng() % 8);
        break;
      case 3: {
        static const char kSpecial[] = "[]=\"@-,;\\:\r\n \t\0xX";
        input.insert(at, 1, kSpecial[rng() % (sizeof kSpecial - 1)]);
        break;
      }
      case 4:
        if (!input.empty()) {
          const std::size_t from = rng() % input.size();
          const std::size_t length = 1 + rng() % 64;
          input.insert(at, input.substr(from, length));
        }
        break;
      case 5:
        if (!seeds.empty()) input.insert(at, seeds[rng() % seeds.size()]);
        break;
      default:
        if (at < input.size()) input.resize(at);
        break;
    }
  }
  return input;
}

}  // namespace

int main(int argc, char** argv) {
  long runs = 10000;
  unsigned long long seed = 1;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (std::strcmp(argv[i], "--runs") == 0) runs = std::strtol(argv[i + 1], nullptr, 10);
    if (std::strcmp(argv[i], "--seed") == 0) seed = std::strtoull(argv[i + 1], nullptr, 10);
  }
  const std::vector<std::string> seeds = QuorvaneFuzzSeeds();
  std::mt19937_64 rng(seed);

  auto run = [](const std::string& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
  };
  for (const std::string& s : seeds) run(s);
  for (long i = 0; i < runs; ++i) {
    if (seeds.empty() || i % 4 == 0) {
      run(RandomBytes(rng, 512));
    } else {
      run(Mutate(rng, seeds[rng() % seeds.size()], seeds));
    }
  }
  std::printf("%ld passed, 0 failed\n", runs + static_cast<long>(seeds.size()));
  return 0;
}
