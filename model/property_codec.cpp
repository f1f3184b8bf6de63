#include "model/property_codec.h"

#include <cstring>

namespace brevantis {
namespace {

constexpr char kMagic[4] = {'B', 'R', 'V', 'P'};
constexpr std::size_t kMaxNameUnits = 256;

void PutU16(std::string* out, std::uint16_t v) {
  out->push_back(static_cast<char>(v & 0xff));
  out->push_back(static_cast<char>(v >> 8));
}

void PutU32(std::string* out, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) out->push_back(static_cast<char>((v >> (8 * i)) & 0xff));
}

// Reads from a bounded buffer; every read fails once the data runs out.
class Reader {
 public:
  Reader(const unsigned char* data, std::size_t size) : data_(data), left_(size) {}
  bool U8(std::uint8_t* v) {
    if (left_ < 1) return false;
    *v = *data_;
    Skip(1);
    return true;
  }
  bool U16(std::uint16_t* v) {
    if (left_ < 2) return false;
    *v = static_cast<std::uint16_t>(data_[0] | (data_[1] << 8));
    Skip(2);
    return true;
  }
  bool U32(std::uint32_t* v) {
    if (left_ < 4) return false;
    *v = static_cast<std::uint32_t>(data_[0]) | (static_cast<std::uint32_t>(data_[1]) << 8) |
         (static_cast<std::uint32_t>(data_[2]) << 16) | (static_cast<std::uint32_t>(data_[3]) << 24);
    Skip(4);
    return true;
  }
  bool Bytes(std::size_t count, std::string* out) {
    if (left_ < count) return false;
    out->assign(reinterpret_cast<const char*>(data_), count);
    Skip(count);
    return true;
  }
  std::size_t Left() const { return left_; }

 private:
  void Skip(std::size_t n) { data_ += n; left_ -= n; }
  const unsigned char* data_;
  std::size_t left_;
};

bool ValidValue(CodecType type, const std::string& bytes) {
  switch (type) {
    case CodecType::String: return bytes.size() % 2 == 0;
    case CodecType::Long: return bytes.size() == 4;
    case CodecType::Bool: return bytes.size() == 2;
    case CodecType::Picture: return true;
  }
  return false;
}

}  // namespace

std::string EncodeProperties(const std::vector<CodedValue>& values) {
  std::string body;
  PutU32(&body, static_cast<std::uint32_t>(values.size()));
  for (const CodedValue& value : values) {
    PutU16(&body, static_cast<std::uint16_t>(value.name.size()));
    for (char16_t unit : value.name) PutU16(&body, static_cast<std::uint16_t>(unit));
    body.push_back(static_cast<char>(value.type));
    PutU32(&body, static_cast<std::uint32_t>(value.bytes.size()));
    body += value.bytes;
  }
  std::string out(kMagic, sizeof(kMagic));
  PutU16(&out, kCodecFormatVersion);
  PutU32(&out, static_cast<std::uint32_t>(body.size()));
  return out + body;
}

bool DecodeHeader(const unsigned char* data, std::size_t size, std::uint32_t* bodyLength) {
  if (size < kCodecHeaderSize || std::memcmp(data, kMagic, sizeof(kMagic)) != 0) return false;
  Reader reader(data + sizeof(kMagic), size - sizeof(kMagic));
  std::uint16_t version = 0;
  return reader.U16(&version) && version == kCodecFormatVersion && reader.U32(bodyLength) &&
         *bodyLength <= kCodecMaxBodyBytes;
}

bool DecodeBody(const unsigned char* data, std::size_t size, std::vector<CodedValue>* values) {
  Reader reader(data, size);
  std::uint32_t count = 0;
  if (!reader.U32(&count) || count > kCodecMaxRecords) return false;
  std::vector<CodedValue> decoded;
  for (std::uint32_t i = 0; i < count; ++i) {
    CodedValue value;
    std::uint16_t nameUnits = 0;
    if (!reader.U16(&nameUnits) || nameUnits == 0 || nameUnits > kMaxNameUnits) return false;
    for (std::uint16_t u = 0; u < nameUnits; ++u) {
      std::uint16_t unit = 0;
      if (!reader.U16(&unit)) return false;
      value.name.push_back(static_cast<char16_t>(unit));
    }
    std::uint8_t type = 0;
    std::uint32_t length = 0;
    if (!reader.U8(&type) || !reader.U32(&length) || !reader.Bytes(length, &value.bytes)) return false;
    value.type = static_cast<CodecType>(type);
    if (!ValidValue(value.type, value.bytes)) return false;
    decoded.push_back(std::move(value));
  }
  if (reader.Left() != 0) return false;
  *values = std::move(decoded);
  return true;
}

bool DecodeSavedStream(const unsigned char* data, std::size_t size, std::vector<CodedValue>* values,
                       std::size_t* streamSize) {
  std::uint32_t bodyLength = 0;
  if (!DecodeHeader(data, size, &bodyLength) || bodyLength > size - kCodecHeaderSize) return false;
  if (!DecodeBody(data + kCodecHeaderSize, bodyLength, values)) return false;
  *streamSize = kCodecHeaderSize + bodyLength;
  return true;
}

}  // namespace brevantis
