// The CryptoAPI steps the methods of the crypto filter box share. Text goes in
// as the ANSI bytes of the system code page, its byte count being its length
// in characters.
#pragma once

#include <windows.h>
#include <wincrypt.h>
#include <string>

#include "crypto/handles.h"

namespace brevantis {

// Opens the current user's default key container of the Base provider.
// On failure GetLastError still tells why.
bool AcquireUserContext(CryptContext* context, DWORD flags);

// A context and an MD5 hash of text. On a failure shows the message of the
// step that failed and returns false; what was opened stays with the owners.
bool OpenMd5Of(const std::wstring& text, CryptContext* context, CryptHash* hash);

// A context and the RC4 key derived, without salt, from the MD5 of password.
// The hash is gone when this returns.
bool OpenRc4Key(const std::wstring& password, CryptContext* context, CryptKey* key);

// inBuffer left-aligned in twice its length, blanks behind: the buffer that
// Encrypt and Decrypt hand to the cipher, as ANSI bytes, made in bytes.
void MakeCipherWorkingBytes(const std::wstring& inBuffer, std::string* bytes);

inline BYTE* Bytes(std::string& bytes) { return reinterpret_cast<BYTE*>(&bytes[0]); }

// Zeroes what a text's buffer holds past its characters: what a longer text
// before it left there. Growing to the capacity writes the zeros.
template <class Text>
void WipeTail(Text* text) {
  const size_t size = text->size();
  text->resize(text->capacity());
  text->resize(size);
}

// Zeroes a text's whole buffer and leaves it empty, the buffer kept: no
// password or plain text stays behind in memory that is freed or reused.
template <class Text>
void Wipe(Text* text) {
  SecureZeroMemory(&(*text)[0], text->size() * sizeof((*text)[0]));
  WipeTail(text);
  text->clear();
}

// Wipes what it names when the scope ends, however it ends.
template <class Text>
class WipeOnExit {
 public:
  explicit WipeOnExit(Text* text) : text_(text) {}
  ~WipeOnExit() { Wipe(text_); }
  WipeOnExit(const WipeOnExit&) = delete;
  WipeOnExit& operator=(const WipeOnExit&) = delete;

 private:
  Text* text_;
};

// A character count as the DWORD byte count CryptoAPI takes.
DWORD ByteCount(size_t characters);

}  // namespace brevantis
