// The control's own binary format for its saved properties in a stream or a
// storage: the same named values a property bag holds, in the order they were
// written. Plain C++ with no Windows types, so that it can be checked apart.
//
//   header  "BRVP", format version (u16), body length (u32)
//   body    record count (u32), then per record:
//           name length in UTF-16 units (u16), name (UTF-16LE),
//           value type (u8), value length in bytes (u32), value bytes
//
// All numbers little-endian. A reader trusts no length: each is checked
// against what is left before anything is read or allocated. A body holds at
// most kCodecMaxBodyBytes and kCodecMaxRecords records, so that a saved form
// from elsewhere costs a bounded amount of memory to read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace brevantis {

enum class CodecType : std::uint8_t {
  String = 1,   // UTF-16LE code units
  Long = 2,     // 4 bytes
  Bool = 3,     // 2 bytes, 0 or 0xFFFF
  Picture = 4,  // the picture object's own persisted stream
};

struct CodedValue {
  std::u16string name;
  CodecType type;
  std::string bytes;

  bool operator==(const CodedValue& other) const {
    return name == other.name && type == other.type && bytes == other.bytes;
  }
};

constexpr std::size_t kCodecHeaderSize = 10;
constexpr std::uint16_t kCodecFormatVersion = 1;
constexpr std::uint32_t kCodecMaxBodyBytes = 32u << 20;
constexpr std::uint32_t kCodecMaxRecords = 1024;

// The whole encoding: header and body.
std::string EncodeProperties(const std::vector<CodedValue>& values);

// Reads a header; false when it is not ours, of an unknown version or names
// a body over the limit.
bool DecodeHeader(const unsigned char* data, std::size_t size, std::uint32_t* bodyLength);

// Reads a body of exactly size bytes; false when it is malformed.
bool DecodeBody(const unsigned char* data, std::size_t size, std::vector<CodedValue>* values);

// A whole saved stream: the header, then exactly the body length it names (a
// container's own data may follow), then the body. streamSize receives how
// many bytes the stream itself took. The control's loader, the fuzz target
// and the tests all decode through this.
bool DecodeSavedStream(const unsigned char* data, std::size_t size, std::vector<CodedValue>* values,
                       std::size_t* streamSize);

}  // namespace brevantis
