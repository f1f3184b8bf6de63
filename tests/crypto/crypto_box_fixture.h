// A crypto filter box made in the test process on the real CryptoAPI, with
// its message boxes recorded instead of shown.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "com/text.h"
#include "crypto/filter_box.h"
#include "testkit/recording_platform.h"

namespace brevantis::testing {

class CryptoBox {
 public:
  // A new object; what its creation showed is in Texts() until Forget().
  explicit CryptoBox(RecordingPlatform* platform) : platform_(platform) {
    EXPECT_EQ(S_OK, CryptoFilterBox::Create(IID__clsCryptoFilterBox, box_.OutVoid()));
  }
  // An object made elsewhere, whose messages are not recorded here.
  explicit CryptoBox(ComPtr<_clsCryptoFilterBox> box) : platform_(nullptr), box_(std::move(box)) {}

  _clsCryptoFilterBox* operator->() const { return box_.Get(); }

  void SetInBuffer(const std::wstring& text) { ASSERT_EQ(S_OK, box_->put_InBuffer(Make(text).Get())); }
  void SetPassword(const std::wstring& text) { ASSERT_EQ(S_OK, box_->put_Password(Make(text).Get())); }
  void SetSignature(const std::wstring& text) { ASSERT_EQ(S_OK, box_->put_Signature(Make(text).Get())); }
  std::wstring InBuffer() const { return Read(&_clsCryptoFilterBox::get_InBuffer); }
  std::wstring OutBuffer() const { return Read(&_clsCryptoFilterBox::get_OutBuffer); }
  std::wstring Signature() const { return Read(&_clsCryptoFilterBox::get_Signature); }
  LONG Status() const {
    LONG status = -1;
    EXPECT_EQ(S_OK, box_->get_Status(&status));
    return status;
  }

  // InBuffer through Encrypt (or Decrypt), giving OutBuffer.
  std::wstring Encrypt(const std::wstring& text) {
    SetInBuffer(text);
    EXPECT_EQ(S_OK, box_->Encrypt());
    return OutBuffer();
  }
  std::wstring Decrypt(const std::wstring& text) {
    SetInBuffer(text);
    EXPECT_EQ(S_OK, box_->Decrypt());
    return OutBuffer();
  }

  // The texts of the message boxes recorded since the last Forget().
  std::vector<std::wstring> Texts() const {
    std::vector<std::wstring> texts;
    if (platform_)
      for (const auto& m : platform_->messages) texts.push_back(m.text);
    return texts;
  }
  void Forget() {
    if (platform_) platform_->messages.clear();
  }

 private:
  static Bstr Make(const std::wstring& text) { return Bstr(text.data(), static_cast<UINT>(text.size())); }
  std::wstring Read(HRESULT (STDMETHODCALLTYPE _clsCryptoFilterBox::*get)(BSTR*)) const {
    Bstr value;
    EXPECT_EQ(S_OK, (box_.Get()->*get)(value.Out()));
    return value.Get() ? std::wstring(value.Get(), value.Length()) : std::wstring();
  }

  RecordingPlatform* platform_;
  ComPtr<_clsCryptoFilterBox> box_;
};

// Tests on an object whose creation has been seen to: the user's key
// container exists (the shared prefix has it set up first).
class CryptoBoxTest : public ::testing::Test {
 protected:
  void SetUp() override { box_.Forget(); }

  RecordingPlatform platform_;
  ScopedPlatform scoped_{&platform_};
  CryptoBox box_{&platform_};
};

// Every byte value but 0, in order, as characters of the ANSI code page.
inline std::wstring EveryByteValue() {
  std::string bytes;
  for (int b = 1; b <= 255; ++b) bytes.push_back(static_cast<char>(b));
  return FromAnsi(bytes);
}

}  // namespace brevantis::testing
