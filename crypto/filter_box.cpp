#include "crypto/filter_box.h"

#include <algorithm>

#include "com/failure.h"
#include "com/text.h"
#include "crypto/handles.h"
#include "crypto/init_user.h"
#include "crypto/messages.h"
#include "crypto/steps.h"

namespace brevantis {

namespace {

const InterfaceEntry kCryptoInterfaces[] = {
    BREVANTIS_INTERFACE(CryptoFilterBox, _clsCryptoFilterBox),
    BREVANTIS_INTERFACE_AS(CryptoFilterBox, IDispatch, _clsCryptoFilterBox),
    BREVANTIS_INTERFACE(CryptoFilterBox, ISupportErrorInfo),
    BREVANTIS_INTERFACE_END,
};

}  // namespace

const InterfaceEntry* CryptoFilterBox::Interfaces() { return kCryptoInterfaces; }

HRESULT CryptoFilterBox::Create(REFIID iid, void** out) {
  return Guarded([&] { return ComObject<CryptoFilterBox>::Create(iid, out); });
}

STDMETHODIMP CryptoFilterBox::get_InBuffer(BSTR* value) { return Guarded([&] { return ToBstr(inBuffer_, value); }); }
STDMETHODIMP CryptoFilterBox::put_InBuffer(BSTR value) {
  return Guarded([&] { Wipe(&inBuffer_); inBuffer_ = FromBstr(value); return S_OK; });
}
STDMETHODIMP CryptoFilterBox::get_OutBuffer(BSTR* value) { return Guarded([&] { return ToBstr(outBuffer_, value); }); }
STDMETHODIMP CryptoFilterBox::get_Signature(BSTR* value) { return Guarded([&] { return ToBstr(signature_, value); }); }
STDMETHODIMP CryptoFilterBox::put_Signature(BSTR value) { return Guarded([&] { signature_ = FromBstr(value); return S_OK; }); }
STDMETHODIMP CryptoFilterBox::get_Password(BSTR* value) { return Guarded([&] { return ToBstr(password_, value); }); }
STDMETHODIMP CryptoFilterBox::put_Password(BSTR value) {
  return Guarded([&] { Wipe(&password_); password_ = FromBstr(value); return S_OK; });
}

CryptoFilterBox::~CryptoFilterBox() {
  for (std::wstring* text : {&inBuffer_, &outBuffer_, &password_}) Wipe(text);
  Wipe(&spareCipherBytes_);
}

STDMETHODIMP CryptoFilterBox::get_Status(LONG* value) {
  if (!value) return E_POINTER;
  *value = status_;
  return S_OK;
}

HRESULT CryptoFilterBox::FinalConstruct() {
  return Guarded([] {
    ShowCryptoMessage(InitUser() ? L"InitUser OK" : L"InitUser failed");
    return S_OK;
  });
}

namespace {

// A method's frame: the object is held through its message boxes, Status is
// 0 while the method runs and what body gives (1, or 2 for a confirmed
// signature) after it, 1 when body ends under the procedure's own handler.
template <class Body>
HRESULT RunMethod(_clsCryptoFilterBox* object, LONG* status, const wchar_t* tag, Body&& body) {
  const ComPtr<_clsCryptoFilterBox> held(object);
  return Guarded([&] {
    *status = 0;
    LONG done = 1;
    RunUnderHandler(tag, [&] { done = body(); });
    *status = done;
    return S_OK;
  });
}

}  // namespace

STDMETHODIMP CryptoFilterBox::Sign() {
  return RunMethod(this, &status_, L"ErrSign ", [&] {
    signature_.clear();
    SignInBuffer();
    return 1;
  });
}

STDMETHODIMP CryptoFilterBox::Validate() {
  // A signature that could not be checked to the end is not confirmed.
  return RunMethod(this, &status_, L"ErrValidate ", [&] { return SignatureConfirmed() ? 2 : 1; });
}

STDMETHODIMP CryptoFilterBox::Encrypt() {
  // OutBuffer keeps the last result until a key is made: callers of Encrypt
  // have always been able to see it there after a failure.
  return RunMethod(this, &status_, L"ErrEncrypt ", [&] {
    EncryptInBuffer();
    return 1;
  });
}

STDMETHODIMP CryptoFilterBox::Decrypt() {
  return RunMethod(this, &status_, L"ErrDecrypt ", [&] {
    outBuffer_.clear();
    DecryptInBuffer();
    return 1;
  });
}

void CryptoFilterBox::SignInBuffer() {
  CryptContext context;
  CryptHash hash;
  if (!OpenMd5Of(inBuffer_, &context, &hash)) return;
  // The first call, with an empty buffer, only learns the signature's size;
  // its failure for want of room is expected.
  std::string buffer = ToAnsi(signature_);
  DWORD length = 0;
  CryptSignHashA(hash.Get(), AT_SIGNATURE, "", 0, Bytes(buffer), &length);
  buffer.assign(length, '\0');
  const BOOL signedOk = CryptSignHashA(hash.Get(), AT_SIGNATURE, "", 0, Bytes(buffer), &length);
  const DWORD error = GetLastError();
  signature_ = FromAnsi(buffer);
  if (!signedOk) ShowCryptoApiError(error, L" during CryptSignHash");
}

bool CryptoFilterBox::SignatureConfirmed() {
  CryptContext context;
  CryptHash hash;
  if (!OpenMd5Of(inBuffer_, &context, &hash)) return false;
  CryptKey key;
  HCRYPTKEY handle = 0;
  if (!CryptGetUserKey(context.Get(), AT_SIGNATURE, &handle)) {
    ShowCryptoApiError(GetLastError(), L" during CryptGetUserKey!");
    return false;
  }
  key.Reset(handle);
  std::string bytes = ToAnsi(signature_);
  if (CryptVerifySignatureA(hash.Get(), Bytes(bytes), ByteCount(signature_.size()), key.Get(), nullptr, 0))
    return true;
  const DWORD error = GetLastError();
  // A signature that does not match is an answer, not a failure.
  if (error != static_cast<DWORD>(NTE_BAD_SIGNATURE)) ShowCryptoApiError(error, L" during CryptVerifySignature!");
  return false;
}

namespace {

// Lends an object's spare cipher buffer to one call and takes it back after.
// A call nested in a message box of the first finds none and makes its own.
class LentBuffer {
 public:
  explicit LentBuffer(std::string* spare) : spare_(spare), bytes_(std::move(*spare)) {}
  ~LentBuffer() { *spare_ = std::move(bytes_); }
  LentBuffer(const LentBuffer&) = delete;
  LentBuffer& operator=(const LentBuffer&) = delete;
  std::string& Bytes() { return bytes_; }

 private:
  std::string* spare_;
  std::string bytes_;
};

}  // namespace

void CryptoFilterBox::EncryptInBuffer() {
  CryptContext context;
  CryptKey key;
  if (!OpenRc4Key(password_, &context, &key)) return;
  const size_t n = inBuffer_.size();
  LentBuffer lent(&spareCipherBytes_);
  std::string& working = lent.Bytes();
  MakeCipherWorkingBytes(inBuffer_, &working);
  DWORD length = ByteCount(n);
  const BOOL encrypted = CryptEncrypt(key.Get(), 0, TRUE, 0, Bytes(working), &length, ByteCount(2 * n));
  const DWORD error = GetLastError();
  if (!encrypted) {
    ShowCryptoMessage(L"bytes required:" + DecimalText(static_cast<LONG>(length)));
    ShowCryptoApiError(error, L" during CryptEncrypt!");
  }
  // Set after a failed call too: callers have always found the buffer there.
  // Only the bytes kept are converted back (in a single-byte code page each
  // is one character), into OutBuffer's own storage when it is big enough.
  AssignFromAnsi(working.data(), std::min<size_t>(length, working.size()), &outBuffer_);
  WipeTail(&outBuffer_);  // the plain text of a longer Decrypt before
  // The cipher wrote over the plain text; a failed call left it there.
  if (!encrypted) SecureZeroMemory(&working[0], working.size());
}

void CryptoFilterBox::DecryptInBuffer() {
  CryptContext context;
  CryptKey key;
  if (!OpenRc4Key(password_, &context, &key)) return;
  const size_t n = inBuffer_.size();
  LentBuffer lent(&spareCipherBytes_);
  std::string& working = lent.Bytes();
  MakeCipherWorkingBytes(inBuffer_, &working);
  // The whole working buffer goes through the cipher, blanks included, unlike
  // in Encrypt; only the first n characters are kept. RC4 is a stream cipher,
  // so those come out the same either way.
  DWORD length = ByteCount(2 * n);
  const BOOL decrypted = CryptDecrypt(key.Get(), 0, TRUE, 0, Bytes(working), &length);
  const DWORD error = GetLastError();
  // The deciphered blanks are bare keystream: they are not kept.
  std::fill(working.begin() + static_cast<std::ptrdiff_t>(n), working.end(), ' ');
  if (!decrypted) {
    ShowCryptoMessage(L"bytes required:" + DecimalText(static_cast<LONG>(length)));
    ShowCryptoApiError(error, L" during CryptDecrypt!");
    return;
  }
  AssignFromAnsi(working.data(), n, &outBuffer_);
  WipeTail(&outBuffer_);
  SecureZeroMemory(&working[0], n);  // the spare buffer keeps no plain text
}

}  // namespace brevantis
