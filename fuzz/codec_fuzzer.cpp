// libFuzzer target for the saved-properties decoder. Any bytes go through the
// loader's path; whatever decodes must encode back to exactly the bytes it
// came from, and those bytes must decode to the same records.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "model/property_codec.h"

namespace {

[[noreturn]] void Fail(const char* what) {
  std::fprintf(stderr, "round trip broken: %s\n", what);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brevantis;
  std::vector<CodedValue> values;
  std::size_t streamSize = 0;
  if (!DecodeSavedStream(data, size, &values, &streamSize)) return 0;

  const std::string encoded = EncodeProperties(values);
  if (encoded != std::string(reinterpret_cast<const char*>(data), streamSize))
    Fail("re-encoding differs from the decoded stream");
  std::vector<CodedValue> again;
  std::size_t againSize = 0;
  if (!DecodeSavedStream(reinterpret_cast<const unsigned char*>(encoded.data()), encoded.size(), &again, &againSize))
    Fail("re-encoding does not decode");
  if (againSize != encoded.size() || values != again) Fail("re-encoding decodes to other records");
  return 0;
}
