#include "crypto/messages.h"

#include "com/text.h"
#include "platform/platform.h"

namespace brevantis {

void ShowCryptoMessage(const std::wstring& text) {
  CurrentPlatform().ShowMessage(nullptr, text, L"Brevantis", MB_OK);
}

std::wstring SignedErrorText(DWORD error) { return DecimalText(static_cast<LONG>(error)); }

void ShowCryptoApiError(DWORD error, const wchar_t* tail) {
  ShowCryptoMessage(L"Error " + SignedErrorText(error) + tail);
}

void ShowKeySetupError(const wchar_t* text, DWORD error) {
  ShowCryptoMessage(text + SignedErrorText(error));
}

void ShowUnexpectedFailure(const wchar_t* tag, HRESULT failure) noexcept {
  // When not even the message can be built, the procedure goes on silently.
  Guarded([&] {
    ShowCryptoMessage(std::wstring(tag) + (failure == E_OUTOFMEMORY ? L"Out of memory" : L"Internal error"));
    return S_OK;
  });
}

}  // namespace brevantis
