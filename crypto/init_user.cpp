#include "crypto/init_user.h"

#include <windows.h>
#include <wincrypt.h>
#include <cstring>

#include "com/text.h"
#include "crypto/handles.h"
#include "crypto/messages.h"
#include "crypto/steps.h"

namespace brevantis {
namespace {

constexpr DWORD kContainerNameBytes = 1001;

// Shown after the container was created: its name, which the provider takes
// from the user's logon name.
void AnnounceNewContainer(HCRYPTPROV context) {
  char name[kContainerNameBytes] = {};
  DWORD size = kContainerNameBytes;
  if (!CryptGetProvParam(context, PP_CONTAINER, reinterpret_cast<BYTE*>(name), &size, 0)) {
    ShowKeySetupError(L"Error getting user name! ", GetLastError());
    name[0] = '\0';
  }
  ShowCryptoMessage(L"Create key container " + FromAnsi(name, strnlen(name, kContainerNameBytes)));
}

// The user's key pair of kind (AT_SIGNATURE or AT_KEYEXCHANGE), made when
// missing.
bool EnsureKeyPair(HCRYPTPROV context, DWORD kind) {
  // Neither handle below is ever destroyed: the class has always left them
  // open, a couple of provider handles per object created, and they are kept
  // so to behave as it always has.
  HCRYPTKEY key = 0;
  if (CryptGetUserKey(context, kind, &key)) return true;
  const DWORD error = GetLastError();
  if (error != static_cast<DWORD>(NTE_NO_KEY)) {
    ShowKeySetupError(L"Error during CryptGetUserKey! ", error);
    return false;
  }
  // One text for both kinds of key, as users have always seen it.
  ShowCryptoMessage(L"Create key exchange key pair");
  if (!CryptGenKey(context, kind, 0, &key)) {
    ShowKeySetupError(L"Error during CryptGenKey! ", GetLastError());
    return false;
  }
  // Given the context handle rather than the new key, this call always fails
  // and leaves the key open; its result is ignored. It stays as it always was.
  const BOOL ignored = CryptDestroyKey(static_cast<HCRYPTKEY>(context));
  (void)ignored;
  return true;
}

bool EnsureKeys() {
  CryptContext context;
  if (!AcquireUserContext(&context, 0)) {
    if (!AcquireUserContext(&context, CRYPT_NEWKEYSET)) {
      ShowKeySetupError(L"Error creating key container! ", GetLastError());
      return false;
    }
    AnnounceNewContainer(context.Get());
  }
  for (DWORD kind : {static_cast<DWORD>(AT_SIGNATURE), static_cast<DWORD>(AT_KEYEXCHANGE)}) {
    if (!EnsureKeyPair(context.Get(), kind)) {
      // A failed set-up has always returned with its context still open.
      context.Release();
      return false;
    }
  }
  return true;
}

}  // namespace

bool InitUser() {
  bool ready = false;
  RunUnderHandler(L"ErrInitUser ", [&] { ready = EnsureKeys(); });
  return ready;
}

}  // namespace brevantis
