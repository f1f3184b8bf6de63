// A whole saved stream decoded the way the control's loader reads one: the
// header, then exactly the body length it names (a container's own data may
// follow), then the body. Shared by the fuzz target, the seed generator and
// the codec tests, so that all of them judge an input alike.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "control/property_codec.h"

namespace brevantis {

// The records of a stream, and how many of its bytes are the stream itself.
inline bool DecodeSavedStream(const unsigned char* data, std::size_t size, std::vector<CodedValue>* values,
                              std::size_t* streamSize) {
  std::uint32_t bodyLength = 0;
  if (!DecodeHeader(data, size, &bodyLength)) return false;
  if (bodyLength > size - kCodecHeaderSize) return false;  // the loader's read would come up short
  if (!DecodeBody(data + kCodecHeaderSize, bodyLength, values)) return false;
  *streamSize = kCodecHeaderSize + bodyLength;
  return true;
}

inline bool SameRecords(const std::vector<CodedValue>& a, const std::vector<CodedValue>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i].name != b[i].name || a[i].type != b[i].type || a[i].bytes != b[i].bytes) return false;
  return true;
}

}  // namespace brevantis
