// The user's key container, in a prefix of its own that starts without one:
// what creating objects shows, and what the methods do once it is gone.
#include "crypto_box_fixture.h"

#include <wincrypt.h>

using namespace brevantis;
using brevantis::testing::CryptoBox;
using brevantis::testing::RecordingPlatform;
using brevantis::testing::ScopedPlatform;

namespace {

using Texts = std::vector<std::wstring>;

std::wstring UserName() {
  char name[256] = {};
  DWORD size = sizeof(name);
  EXPECT_TRUE(GetUserNameA(name, &size));
  return FromAnsi(name, strlen(name));
}

void DeleteKeyContainer() {
  HCRYPTPROV unused = 0;
  ASSERT_TRUE(CryptAcquireContextA(&unused, "", "Microsoft Base Cryptographic Provider v1.0", PROV_RSA_FULL,
                                   CRYPT_DELETEKEYSET));
}

// One story, not several tests: the steps share the prefix's one container.
TEST(KeyContainer, IsCreatedByTheFirstObjectAndMissedByTheMethodsWhenGone) {
  RecordingPlatform platform;
  ScopedPlatform scoped(&platform);
  const Texts firstRun = {L"Create key container " + UserName(), L"Create key exchange key pair",
                          L"Create key exchange key pair", L"InitUser OK"};

  CryptoBox first(&platform);
  EXPECT_EQ(firstRun, first.Texts());
  for (const auto& message : platform.messages) {
    EXPECT_EQ(nullptr, message.owner);
    EXPECT_EQ(L"Brevantis", message.caption);
    EXPECT_EQ(static_cast<UINT>(MB_OK), message.style);
  }
  first.Forget();
  CryptoBox second(&platform);
  EXPECT_EQ(Texts{L"InitUser OK"}, second.Texts());
  second.Forget();

  // Both key pairs work: the signature key signs, the container derives keys.
  second.SetInBuffer(L"Atlante");
  ASSERT_EQ(S_OK, second->Sign());
  ASSERT_EQ(S_OK, first->Validate());
  EXPECT_EQ(1, first.Status());  // first has no signature of its own
  first.SetInBuffer(L"Atlante");
  first.SetSignature(second.Signature());
  ASSERT_EQ(S_OK, first->Validate());
  EXPECT_EQ(2, first.Status());
  first.SetPassword(L"segreto");
  const std::wstring secret = first.Encrypt(L"Atlante");
  ASSERT_EQ(7u, secret.size());
  ASSERT_EQ(Texts(), first.Texts());

  DeleteKeyContainer();
  const std::wstring noContainer = L"Error -2146893802 during CryptAcquireContext!";
  first.Encrypt(L"Altro testo");
  EXPECT_EQ(secret, first.OutBuffer());  // Encrypt leaves the last result in place
  EXPECT_EQ(1, first.Status());
  first.Decrypt(secret);
  EXPECT_EQ(L"", first.OutBuffer());  // Decrypt clears it
  EXPECT_EQ(1, first.Status());
  ASSERT_EQ(S_OK, first->Sign());
  EXPECT_EQ(L"", first.Signature());
  EXPECT_EQ(1, first.Status());
  first.SetSignature(second.Signature());
  ASSERT_EQ(S_OK, first->Validate());
  EXPECT_EQ(1, first.Status());
  EXPECT_EQ(Texts(4, noContainer), first.Texts());
  first.Forget();

  // The next object makes a new container, with new keys.
  CryptoBox third(&platform);
  EXPECT_EQ(firstRun, third.Texts());
  third.SetInBuffer(L"Atlante");
  third.SetSignature(second.Signature());
  ASSERT_EQ(S_OK, third->Validate());
  EXPECT_EQ(1, third.Status());
}

}  // namespace
