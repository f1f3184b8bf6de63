#include "crypto/steps.h"

#include <new>

#include "com/text.h"
#include "crypto/messages.h"

namespace brevantis {

bool AcquireUserContext(CryptContext* context, DWORD flags) {
  // The default container is named by an empty string, not a null pointer.
  HCRYPTPROV handle = 0;
  if (!CryptAcquireContextA(&handle, "", "Microsoft Base Cryptographic Provider v1.0", PROV_RSA_FULL, flags))
    return false;
  context->Reset(handle);
  return true;
}

bool OpenMd5Of(const std::wstring& text, CryptContext* context, CryptHash* hash) {
  if (!AcquireUserContext(context, 0)) {
    ShowCryptoApiError(GetLastError(), L" during CryptAcquireContext!");
    return false;
  }
  HCRYPTHASH handle = 0;
  if (!CryptCreateHash(context->Get(), CALG_MD5, 0, 0, &handle)) {
    ShowCryptoApiError(GetLastError(), L" during CryptCreateHash!");
    return false;
  }
  hash->Reset(handle);
  std::string bytes = ToAnsi(text);
  const WipeOnExit<std::string> wipe(&bytes);  // a password, or text to sign
  if (!CryptHashData(hash->Get(), Bytes(bytes), ByteCount(text.size()), 0)) {
    ShowCryptoApiError(GetLastError(), L" during CryptHashData!");
    return false;
  }
  return true;
}

bool OpenRc4Key(const std::wstring& password, CryptContext* context, CryptKey* key) {
  CryptHash hash;
  if (!OpenMd5Of(password, context, &hash)) return false;
  HCRYPTKEY handle = 0;
  if (!CryptDeriveKey(context->Get(), CALG_RC4, hash.Get(), 0, &handle)) {
    ShowCryptoApiError(GetLastError(), L" during CryptDeriveKey!");
    return false;
  }
  key->Reset(handle);
  return true;
}

void MakeCipherWorkingBytes(const std::wstring& inBuffer, std::string* bytes) {
  // A blank is the same one byte in every ANSI code page, so the blanks are
  // added as bytes rather than converted.
  bytes->clear();
  bytes->reserve(2 * inBuffer.size() + 1);
  AppendAnsi(inBuffer, bytes);
  bytes->append(inBuffer.size(), ' ');
}

DWORD ByteCount(size_t characters) {
  if (characters != static_cast<DWORD>(characters)) throw std::bad_alloc();  // past 4 GiB: no buffer can hold it
  return static_cast<DWORD>(characters);
}

}  // namespace brevantis
