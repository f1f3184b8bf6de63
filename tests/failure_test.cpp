// Where a failure started, as the failure macros note it for the thread.
#include <gtest/gtest.h>

#include <cstring>

#include "com/failure.h"

using namespace brevantis;

namespace {

const int kFirstLine = __LINE__ + 1;
HRESULT Inner(HRESULT hr) { RETURN_HR_IF(hr, FAILED(hr)); return S_OK; }
HRESULT Outer(HRESULT hr) { RETURN_IF_FAILED(Inner(hr)); return S_FALSE; }

TEST(Failure, TheFirstPlaceAFailureIsSeenIsKept) {
  ForgetFailure();
  EXPECT_EQ(S_FALSE, Outer(S_OK));
  EXPECT_EQ(nullptr, LastFailure().site);

  EXPECT_EQ(E_ACCESSDENIED, Outer(E_ACCESSDENIED));
  const FailureOrigin origin = LastFailure();
  EXPECT_EQ(E_ACCESSDENIED, origin.hr);
  ASSERT_NE(nullptr, origin.site);
  EXPECT_EQ(kFirstLine, origin.site->line) << "the caller it passed through is not the origin";
  EXPECT_STREQ("tests/failure_test.cpp", origin.site->file);

  EXPECT_EQ(E_FAIL, Guarded([] { return Outer(E_FAIL); }));
  EXPECT_EQ(E_FAIL, LastFailure().hr) << "another failure is noted afresh";
  EXPECT_EQ(E_OUTOFMEMORY, Guarded([]() -> HRESULT { throw std::bad_alloc(); }));
  EXPECT_EQ(nullptr, LastFailure().site) << "entering the server forgets the last failure";
}

}  // namespace
