// Owners for CryptoAPI handles: a provider context, a hash, a key. Each is
// released on every exit path of the method that made it.
#pragma once

#include <windows.h>
#include <wincrypt.h>

#include "com/raii.h"

namespace brevantis {

struct CryptContextTraits {
  static HCRYPTPROV Invalid() { return 0; }
  static void Close(HCRYPTPROV h) { CryptReleaseContext(h, 0); }
};
struct CryptHashTraits {
  static HCRYPTHASH Invalid() { return 0; }
  static void Close(HCRYPTHASH h) { CryptDestroyHash(h); }
};
struct CryptKeyTraits {
  static HCRYPTKEY Invalid() { return 0; }
  static void Close(HCRYPTKEY h) { CryptDestroyKey(h); }
};

using CryptContext = UniqueHandle<HCRYPTPROV, CryptContextTraits>;
using CryptHash = UniqueHandle<HCRYPTHASH, CryptHashTraits>;
using CryptKey = UniqueHandle<HCRYPTKEY, CryptKeyTraits>;

}  // namespace brevantis
