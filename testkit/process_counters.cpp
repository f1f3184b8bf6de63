#include "testkit/process_counters.h"

namespace brevantis::testing {

size_t HeapBytesInUse() {
  HANDLE heaps[256];
  const DWORD count = GetProcessHeaps(256, heaps);
  size_t total = 0;
  for (DWORD i = 0; i < count && i < 256; ++i) {
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(heaps[i]);
    while (HeapWalk(heaps[i], &entry))
      if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) total += entry.cbData;
    HeapUnlock(heaps[i]);
  }
  return total;
}

}  // namespace brevantis::testing
