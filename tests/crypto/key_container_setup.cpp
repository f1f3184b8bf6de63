// Makes sure the shared test prefix holds the user's key container before
// any test that creates crypto filter boxes there runs, so that parallel
// tests never race to create it. Prints what the set-up showed; fails unless
// it ended with "InitUser OK".
#include <cstdio>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "com/text.h"
#include "crypto/filter_box.h"
#include "testkit/recording_platform.h"

int main() {
  brevantis::testing::RecordingPlatform platform;
  brevantis::testing::ScopedPlatform scoped(&platform);
  brevantis::ComPtr<IUnknown> box;
  if (FAILED(brevantis::CryptoFilterBox::Create(IID_IUnknown, box.OutVoid()))) return 2;
  for (const auto& message : platform.messages) std::printf("%s\n", brevantis::ToAnsi(message.text).c_str());
  return !platform.messages.empty() && platform.messages.back().text == L"InitUser OK" ? 0 : 1;
}
