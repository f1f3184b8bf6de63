// Encrypt and Decrypt of the crypto filter box against the bare CryptoAPI
// calls on the same bytes, at 1 MiB and 16 MiB, in one run. Prints the time
// of each, their ratio (target: at most 1.3) and the growth from 1 to 16 MiB
// (linear: 16). Message boxes are recorded, not shown; any beyond the key
// set-up's means a failure and a non-zero exit code.
#include <windows.h>
#include <wincrypt.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "com/text.h"
#include "crypto/filter_box.h"
#include "testkit/recording_platform.h"

using namespace brevantis;

namespace {

const wchar_t kPassword[] = L"segreto";

double Milliseconds(const std::function<void()>& work) {
  LARGE_INTEGER frequency, start, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  work();
  QueryPerformanceCounter(&end);
  return 1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// What the methods ask of CryptoAPI, with nothing around it: the context, the
// RC4 key from the MD5 of the password, the cipher over the first dataLength
// bytes of the buffer.
void BareCipher(std::string* buffer, DWORD dataLength, bool encrypt) {
  std::string password = ToAnsi(kPassword);
  HCRYPTPROV context = 0;
  HCRYPTHASH hash = 0;
  HCRYPTKEY key = 0;
  CryptAcquireContextA(&context, "", "Microsoft Base Cryptographic Provider v1.0", PROV_RSA_FULL, 0);
  CryptCreateHash(context, CALG_MD5, 0, 0, &hash);
  CryptHashData(hash, reinterpret_cast<BYTE*>(&password[0]), static_cast<DWORD>(password.size()), 0);
  CryptDeriveKey(context, CALG_RC4, hash, 0, &key);
  CryptDestroyHash(hash);
  BYTE* data = reinterpret_cast<BYTE*>(&(*buffer)[0]);
  DWORD length = dataLength;
  if (encrypt) CryptEncrypt(key, 0, TRUE, 0, data, &length, static_cast<DWORD>(buffer->size()));
  else CryptDecrypt(key, 0, TRUE, 0, data, &length);
  CryptDestroyKey(key);
  CryptReleaseContext(context, 0);
}

std::wstring SampleText(size_t characters) {
  std::string bytes(characters, '\0');
  unsigned seed = 2024;
  for (char& c : bytes) c = static_cast<char>(1 + ((seed = seed * 1103515245u + 12345u) >> 16) % 255);
  return FromAnsi(bytes);
}

struct Timing {
  double method;
  double bare;
};

// Best of several rounds, the method and the bare calls taking turns so that
// both meet the same load on the machine.
Timing Measure(_clsCryptoFilterBox* box, const std::wstring& in, bool encrypt) {
  Bstr text(in.data(), static_cast<UINT>(in.size()));
  box->put_InBuffer(text.Get());
  // The same bytes the method hands over: the text and as many blanks.
  const std::string working = ToAnsi(in) + std::string(in.size(), ' ');
  const DWORD dataLength = static_cast<DWORD>(encrypt ? in.size() : 2 * in.size());
  std::string buffer;
  Timing best = {1e30, 1e30};
  for (int round = 0; round < 9; ++round) {
    best.method = std::min(best.method, Milliseconds([&] { encrypt ? box->Encrypt() : box->Decrypt(); }));
    buffer = working;
    best.bare = std::min(best.bare, Milliseconds([&] { BareCipher(&buffer, dataLength, encrypt); }));
  }
  return best;
}

}  // namespace

int main() {
  testing::RecordingPlatform platform(testing::RecordingPlatform::kAnyCall);
  testing::ScopedPlatform scoped(&platform);
  ComPtr<_clsCryptoFilterBox> box;
  if (FAILED(CryptoFilterBox::Create(IID__clsCryptoFilterBox, box.OutVoid()))) return 2;
  const size_t setUpMessages = platform.messages.size();
  box->put_Password(Bstr(kPassword).Get());

  std::printf("%-8s %-7s %12s %12s %7s\n", "method", "size", "method ms", "bare ms", "ratio");
  Timing results[2][2];
  const size_t sizes[] = {1u << 20, 16u << 20};
  for (int s = 0; s < 2; ++s) {
    const std::wstring plain = SampleText(sizes[s]);
    results[s][0] = Measure(box.Get(), plain, true);
    Bstr secret;
    box->get_OutBuffer(secret.Out());
    results[s][1] = Measure(box.Get(), FromBstr(secret.Get()), false);
    for (int m = 0; m < 2; ++m) {
      std::printf("%-8s %4u MiB %12.1f %12.1f %7.2f\n", m ? "Decrypt" : "Encrypt",
                  static_cast<unsigned>(sizes[s] >> 20), results[s][m].method, results[s][m].bare,
                  results[s][m].method / results[s][m].bare);
    }
  }
  for (int m = 0; m < 2; ++m) {
    std::printf("%s from 1 to 16 MiB: method x%.1f, bare x%.1f\n", m ? "Decrypt" : "Encrypt",
                results[1][m].method / results[0][m].method, results[1][m].bare / results[0][m].bare);
  }
  for (size_t i = setUpMessages; i < platform.messages.size(); ++i)
    std::printf("message: %s\n", ToAnsi(platform.messages[i].text).c_str());
  return platform.messages.size() == setUpMessages ? 0 : 1;
}
