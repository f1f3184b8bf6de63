// What the crypto filter box tells the user. Every message is a plain OK box
// with no owner under the library's title; nothing reaches the caller.
#pragma once

#include <windows.h>
#include <string>

#include "com/failure.h"

namespace brevantis {

void ShowCryptoMessage(const std::wstring& text);

// GetLastError as the user reads it: CryptoAPI codes are HRESULTs, so most
// print as negative numbers.
std::wstring SignedErrorText(DWORD error);

// "Error " + code + tail, e.g. "Error -2146893802 during CryptAcquireContext!".
void ShowCryptoApiError(DWORD error, const wchar_t* tail);

// The key container set-up words it the other way round: text, then code.
void ShowKeySetupError(const wchar_t* text, DWORD error);

// Shows tag and what failed: "Out of memory" or "Internal error".
void ShowUnexpectedFailure(const wchar_t* tag, HRESULT failure) noexcept;

// Runs body under a procedure's own catch-all handler: an exception ends the
// body (its handles are released on the way out), tag and the failure are
// shown, and the caller goes on with its closing steps.
template <class Body>
void RunUnderHandler(const wchar_t* tag, Body&& body) noexcept {
  const HRESULT hr = Guarded([&] {
    body();
    return S_OK;
  });
  if (FAILED(hr)) ShowUnexpectedFailure(tag, hr);
}

}  // namespace brevantis
