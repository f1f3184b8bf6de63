#include "process_counters.h"

#include <winternl.h>
#include <ntstatus.h>
#include <vector>

namespace brevantis::testing {

DWORD HandleCount() {
  DWORD count = 0;
  if (GetProcessHandleCount(GetCurrentProcess(), &count) && count) return count;
  using QueryFn = LONG(WINAPI*)(ULONG, PVOID, ULONG, PULONG);
  const auto query = reinterpret_cast<QueryFn>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
  if (!query) return 0;
  std::vector<char> table(1 << 16);
  LONG status;
  ULONG needed = 0;
  while ((status = query(SystemHandleInformation, table.data(), static_cast<ULONG>(table.size()), &needed)) ==
         static_cast<LONG>(STATUS_INFO_LENGTH_MISMATCH))
    table.resize(table.size() * 2);
  if (status != 0) return 0;
  const auto* info = reinterpret_cast<const SYSTEM_HANDLE_INFORMATION*>(table.data());
  for (ULONG i = 0; i < info->Count; ++i)
    if (info->Handle[i].OwnerPid == GetCurrentProcessId()) ++count;
  return count;
}

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

DWORD GdiObjectCount() { return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); }

}  // namespace brevantis::testing
