#include "testkit/process_counters.h"

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

// Wine's table of GDI handles, to which the process environment block points:
// 24-byte entries, in use when their type is not 0.
#pragma pack(push, 1)
struct WineGdiEntry {
  UINT64 object;
  ULONG owner;
  USHORT unique;
  UCHAR type;
  UCHAR flags;
  UINT64 user;
};
#pragma pack(pop)

DWORD GdiObjectCount() {
  const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  if (counted) return counted;  // Wine answers 0
#ifdef _WIN64
  constexpr size_t kPebOffset = 0x60, kTableOffset = 0xF8;
#else
  constexpr size_t kPebOffset = 0x30, kTableOffset = 0x94;
#endif
  const auto* teb = reinterpret_cast<const unsigned char*>(NtCurrentTeb());
  const auto* peb = *reinterpret_cast<const unsigned char* const*>(teb + kPebOffset);
  const auto* table = *reinterpret_cast<const WineGdiEntry* const*>(peb + kTableOffset);
  if (!table) return 0;
  DWORD count = 0;
  for (int i = 0; i < 0x10000; ++i)
    if (table[i].type) ++count;
  return count;
}

}  // namespace brevantis::testing
