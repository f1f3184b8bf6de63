// What a process holds, for checks that repeated work leaves nothing behind.
#pragma once

#include <windows.h>
#include <cstddef>

namespace brevantis::testing {

// Bytes in use in every heap of the process.
size_t HeapBytesInUse();

}  // namespace brevantis::testing
