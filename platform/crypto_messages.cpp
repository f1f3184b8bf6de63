#include "platform/crypto_messages.h"

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

void ShowUnexpectedFailure(const wchar_t* tag, const wchar_t* description) noexcept {
  try {
    ShowCryptoMessage(std::wstring(tag) + description);
  } catch (...) {
    // Not even the message could be built: the procedure goes on silently.
  }
}

}  // namespace brevantis
