// What a process holds, for checks that repeated work leaves nothing behind.
#pragma once

#include <windows.h>
#include <cstddef>

namespace brevantis::testing {

// Open kernel handles. GetProcessHandleCount where the system answers it;
// Wine answers 0, and there the process's entries in the system's handle
// table give the count.
DWORD HandleCount();

// GDI objects the process holds. GetGuiResources where the system answers
// it; Wine answers 0, and there its table of GDI handles gives the count.
DWORD GdiObjectCount();

// Bytes in use in every heap of the process.
size_t HeapBytesInUse();

}  // namespace brevantis::testing
