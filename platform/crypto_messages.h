// What the crypto filter box tells the user. Every message is a plain OK box
// with no owner under the library's title; nothing reaches the caller.
#pragma once

#include <windows.h>
#include <new>
#include <string>

namespace brevantis {

void ShowCryptoMessage(const std::wstring& text);

// GetLastError as the user reads it: CryptoAPI codes are HRESULTs, so most
// print as negative numbers.
std::wstring SignedErrorText(DWORD error);

// "Error " + code + tail, e.g. "Error -2146893802 during CryptAcquireContext!".
void ShowCryptoApiError(DWORD error, const wchar_t* tail);

// The key container set-up words it the other way round: text, then code.
void ShowKeySetupError(const wchar_t* text, DWORD error);

// Shows tag + description; never throws, even when memory has run out.
void ShowUnexpectedFailure(const wchar_t* tag, const wchar_t* description) noexcept;

// Runs body under a procedure's own catch-all handler: an exception ends the
// body (its handles are released on the way out), tag and the failure's
// description are shown, and false tells the caller to go on with its
// closing steps.
template <class Body>
bool RunUnderHandler(const wchar_t* tag, Body&& body) noexcept {
  try {
    body();
    return true;
  } catch (const std::bad_alloc&) {
    ShowUnexpectedFailure(tag, L"Out of memory");
  } catch (...) {
    ShowUnexpectedFailure(tag, L"Internal error");
  }
  return false;
}

}  // namespace brevantis
