// The saved-properties codec on its own: a stream written out by hand, the
// fuzzer's seed corpus and the regression inputs (embedded at build time from
// fuzz/), each read the way the control's loader reads a stream. Plain C++:
// the same program also runs natively under the sanitizers (fuzz/run.sh).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codec_inputs.h"
#include "model/property_codec.h"

using namespace brevantis;

namespace {

std::string AsString(const codec_inputs::Input& input) {
  return std::string(reinterpret_cast<const char*>(input.data), input.size);
}

bool Decode(const std::string& stream, std::vector<CodedValue>* values, std::size_t* streamSize) {
  return DecodeSavedStream(reinterpret_cast<const unsigned char*>(stream.data()), stream.size(), values, streamSize);
}

// Two records byte by byte: a Long named "A" + e-grave, a String named by one
// CJK unit.
const std::string kHandWritten(
    "BRVP\x01\x00\x20\x00\x00\x00"
    "\x02\x00\x00\x00"
    "\x02\x00" "A\x00\xe8\x00" "\x02" "\x04\x00\x00\x00" "\x78\x56\x34\x12"
    "\x01\x00" "\x2d\x4e" "\x01" "\x04\x00\x00\x00" "h\x00i\x00",
    42);

TEST(CodecTest, AHandWrittenStreamDecodesToItsRecordsAndIsWhatTheEncoderWrites) {
  std::vector<CodedValue> values;
  std::size_t streamSize = 0;
  ASSERT_TRUE(Decode(kHandWritten, &values, &streamSize));
  EXPECT_EQ(kHandWritten.size(), streamSize);
  ASSERT_EQ(2u, values.size());
  EXPECT_EQ(u"A\u00e8", values[0].name);
  EXPECT_EQ(CodecType::Long, values[0].type);
  EXPECT_EQ(std::string("\x78\x56\x34\x12"), values[0].bytes);
  EXPECT_EQ(u"\u4e2d", values[1].name);
  EXPECT_EQ(CodecType::String, values[1].type);
  EXPECT_EQ(std::string("h\0i\0", 4), values[1].bytes);
  EXPECT_EQ(kHandWritten, EncodeProperties(values));
}

TEST(CodecTest, ValidStreamsDecodeAndEncodeBackToTheirOwnBytes) {
  ASSERT_FALSE(codec_inputs::kValid.empty());
  for (const codec_inputs::Input& input : codec_inputs::kValid) {
    SCOPED_TRACE(input.name);
    const std::string stream = AsString(input);
    std::vector<CodedValue> values;
    std::size_t streamSize = 0;
    ASSERT_TRUE(Decode(stream, &values, &streamSize));
    ASSERT_LE(streamSize, stream.size());
    const std::string encoded = EncodeProperties(values);
    EXPECT_EQ(stream.substr(0, streamSize), encoded);
    std::vector<CodedValue> again;
    ASSERT_TRUE(Decode(encoded, &again, &streamSize));
    EXPECT_EQ(values, again);
  }
}

TEST(CodecTest, MalformedStreamsAreRejected) {
  ASSERT_FALSE(codec_inputs::kRejected.empty());
  for (const codec_inputs::Input& input : codec_inputs::kRejected) {
    std::vector<CodedValue> values;
    std::size_t streamSize = 0;
    EXPECT_FALSE(Decode(AsString(input), &values, &streamSize)) << input.name;
  }
}

// A form from elsewhere costs bounded memory to read: the most records and
// the longest body decode, one more of either does not.
TEST(CodecTest, TheLimitsAreTheLastLengthsThatDecode) {
  const CodedValue tiny{u"A", CodecType::Long, std::string(4, '\0')};
  std::vector<CodedValue> values(kCodecMaxRecords, tiny);
  std::size_t streamSize = 0;
  EXPECT_TRUE(Decode(EncodeProperties(values), &values, &streamSize));
  values.assign(kCodecMaxRecords + 1, tiny);
  EXPECT_FALSE(Decode(EncodeProperties(values), &values, &streamSize));
  // Count, then name length, one unit, type and value length: 13 bytes.
  values.assign(1, CodedValue{u"A", CodecType::Picture, std::string(kCodecMaxBodyBytes - 13, 'p')});
  EXPECT_TRUE(Decode(EncodeProperties(values), &values, &streamSize));
  values[0].bytes.push_back('p');
  EXPECT_FALSE(Decode(EncodeProperties(values), &values, &streamSize));
}

// Every cut of a valid stream fails: a plain cut leaves the body short of its
// length, and a cut whose header is made to agree leaves records short of
// their count.
TEST(CodecTest, StreamsCutAnywhereAreRejectedEvenWhenTheHeaderAgrees) {
  for (const codec_inputs::Input& input : codec_inputs::kValid) {
    SCOPED_TRACE(input.name);
    std::vector<CodedValue> values;
    std::size_t streamSize = 0;
    const std::string stream = AsString(input);
    ASSERT_TRUE(Decode(stream, &values, &streamSize));
    const std::size_t full = streamSize;
    for (std::size_t cut = 0; cut < full; ++cut) {
      std::string shorter = stream.substr(0, cut);
      EXPECT_FALSE(Decode(shorter, &values, &streamSize)) << "cut at " << cut;
      if (cut < kCodecHeaderSize) continue;
      const std::uint32_t bodyLength = static_cast<std::uint32_t>(cut - kCodecHeaderSize);
      for (int i = 0; i < 4; ++i) shorter[6 + i] = static_cast<char>(bodyLength >> (8 * i));
      EXPECT_FALSE(Decode(shorter, &values, &streamSize)) << "cut at " << cut << " with its length";
    }
  }
}

}  // namespace
