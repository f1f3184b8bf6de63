// clsCryptoFilterBox: signs, validates, encrypts and decrypts text through the
// Windows CryptoAPI. The host fills the buffers, calls a method and reads the
// result back. Each method opens its own provider context and releases it
// before it returns; failures are told to the user in message boxes and end
// in Status, never in an error for the caller.
#pragma once

#include <windows.h>
#include <string>

#include "BrevantisLib_h.h"
#include "com/error_info.h"
#include "com/object.h"

namespace brevantis {

class CryptoFilterBox : public ComClassBase,
                        public DispatchImpl<_clsCryptoFilterBox>,
                        public SupportErrorInfoFor<_clsCryptoFilterBox> {
 public:
  static const InterfaceEntry* Interfaces();
  static HRESULT Create(REFIID iid, void** out);
  // Runs InitUser and tells the user how it went; creation goes on either way.
  HRESULT FinalConstruct();
  // Wipes the password and the texts.
  ~CryptoFilterBox();

  STDMETHODIMP get_InBuffer(BSTR* value) override;
  STDMETHODIMP put_InBuffer(BSTR value) override;
  STDMETHODIMP get_OutBuffer(BSTR* value) override;
  STDMETHODIMP get_Signature(BSTR* value) override;
  STDMETHODIMP put_Signature(BSTR value) override;
  STDMETHODIMP Sign() override;
  STDMETHODIMP Validate() override;
  STDMETHODIMP Encrypt() override;
  STDMETHODIMP Decrypt() override;
  STDMETHODIMP get_Status(LONG* value) override;
  STDMETHODIMP get_Password(BSTR* value) override;
  STDMETHODIMP put_Password(BSTR value) override;

 private:
  void SignInBuffer();
  bool SignatureConfirmed();
  void EncryptInBuffer();
  void DecryptInBuffer();

  std::wstring inBuffer_;
  std::wstring outBuffer_;
  std::wstring password_;
  std::wstring signature_;
  LONG status_ = 0;
  // The cipher's working buffer, kept between calls so that repeated calls on
  // a large text reuse memory already mapped instead of fresh pages (most of
  // the cost beyond the cipher itself). It holds no keystream between calls.
  std::string spareCipherBytes_;
};

}  // namespace brevantis
