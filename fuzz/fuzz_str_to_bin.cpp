// StrToBin over arbitrary text: the caller's text loses its blanks, the byte count follows the
// half-to-even rule, an overflow is the only failure, and hex text of even length survives a
// trip through BinToStr.
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "FuzzSeeds.h"
#include "base/Failure.h"
#include "base/Text.h"
#include "platform/portable/MemoryRegistry.h"
#include "stores/AdvRegistryAccess.h"

std::vector<std::string> QuorvaneFuzzSeeds() {
  return {"41 42", "ABC", "ABCDE", "00 0a ff", "4G", "ZZ", "0", "  ", "01,02,\\"};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvane;
  static platform::portable::MemoryRegistry store;
  static AdvRegistryAccess reg(store);
  std::string input(reinterpret_cast<const char*>(data), size);
  const std::string expectedText = text::Trim(text::Replace(input, " ", ""));

  std::string bin = input;
  std::string bytes;
  try {
    bytes = reg.StrToBin(bin);
  } catch (const Failure& f) {
    if (f.Number() != FailureNumber::Overflow || expectedText.size() <= 32767) std::abort();
    return 0;
  }
  if (bin != expectedText) std::abort();
  // Half the length; of an odd length, the lone last digit counts only when the length is three
  // more than a multiple of four.
  const std::size_t n = expectedText.size();
  const std::size_t expectedCount = n % 2 == 0 ? n / 2 : (n % 4 == 3 ? (n + 1) / 2 : (n - 1) / 2);
  if (bytes.size() != expectedCount) std::abort();

  bool allHex = expectedText.size() % 2 == 0;
  for (const char c : expectedText) allHex = allHex && std::isxdigit(static_cast<unsigned char>(c));
  if (allHex && !expectedText.empty()) {
    const std::string back = text::Replace(text::Trim(reg.BinToStr(bytes)), " ", "");
    if (back != text::UpperCase(expectedText)) std::abort();
  }
  if (reg.isBinValid(input) != kFalse) std::abort();
  return 0;
}
