// The saved-properties codec over fuzz/'s inputs; plain C++, also run natively under the sanitizers (fuzz/run.sh).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codec_inputs.h"
#include "model/property_codec.h"

using namespace brevantis;

namespace {

bool Decode(const std::string& stream, std::vector<CodedValue>* values, std::size_t* size) {
  return DecodeSavedStream(reinterpret_cast<const unsigned char*>(stream.data()), stream.size(), values, size);
}

// Valid inputs encode back to their own bytes and fail cut anywhere, even with the header's length made to agree.
TEST(CodecTest, FuzzInputsDecodeOrFailAsFiledAndCutsAlwaysFail) {
  ASSERT_FALSE(codec_inputs::kValid.empty() || codec_inputs::kRejected.empty());
  std::vector<CodedValue> values, again;
  std::size_t size = 0;
  for (const codec_inputs::Input& input : codec_inputs::kValid) {
    SCOPED_TRACE(input.name);
    const std::string stream(reinterpret_cast<const char*>(input.data), input.size);
    ASSERT_TRUE(Decode(stream, &values, &size));
    const std::string encoded = EncodeProperties(values);
    EXPECT_EQ(stream.substr(0, size), encoded);
    for (std::size_t cut = 0; cut < encoded.size(); ++cut) {
      std::string shorter = encoded.substr(0, cut);
      EXPECT_FALSE(Decode(shorter, &again, &size)) << "cut at " << cut;
      for (int i = 0; i < 4 && cut >= kCodecHeaderSize; ++i)
        shorter[6 + i] = static_cast<char>((cut - kCodecHeaderSize) >> (8 * i));
      EXPECT_FALSE(cut >= kCodecHeaderSize && Decode(shorter, &again, &size)) << "cut at " << cut << " agreeing";
    }
  }
  for (const codec_inputs::Input& input : codec_inputs::kRejected)
    EXPECT_FALSE(Decode(std::string(reinterpret_cast<const char*>(input.data), input.size), &values, &size))
        << input.name;
}

// A form from elsewhere costs bounded memory: the most records and the longest body (13 bytes of it framing one
// record) decode, one more of either does not.
TEST(CodecTest, TheLimitsAreTheLastLengthsThatDecode) {
  const CodedValue tiny{u"A", CodecType::Long, std::string(4, '\0')};
  const std::string longest(kCodecMaxBodyBytes - 13, 'p');
  for (const auto& [values, decodes] : {std::make_pair(std::vector<CodedValue>(kCodecMaxRecords, tiny), true),
           std::make_pair(std::vector<CodedValue>(kCodecMaxRecords + 1, tiny), false),
           std::make_pair(std::vector<CodedValue>{{u"A", CodecType::Picture, longest}}, true),
           std::make_pair(std::vector<CodedValue>{{u"A", CodecType::Picture, longest + 'p'}}, false)}) {
    std::vector<CodedValue> decoded;
    std::size_t size = 0;
    EXPECT_EQ(decodes, Decode(EncodeProperties(values), &decoded, &size)) << values.size();
  }
}

}  // namespace
