// What the control tests share: a control created in the test process, and
// late-bound access to its properties by name, as a host has it.
#pragma once

#include <gtest/gtest.h>

#include <olectl.h>
#include <string>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "control/brevantis_control.h"
#include "model/store.h"
#include "testkit/dispatch_client.h"
#include "testkit/test_container.h"

namespace brevantis::testing {

class ControlTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr))); }
  void TearDown() override { OleUninitialize(); }

  // A new instance of the control, as a container creates it (no InitNew yet).
  static ComPtr<IDispatch> NewControl() {
    ComPtr<IDispatch> control;
    EXPECT_EQ(S_OK, BrevantisControl::Create(IID_IDispatch, control.OutVoid()));
    return control;
  }

  template <class I>
  static ComPtr<I> As(IUnknown* object) {
    ComPtr<I> itf;
    EXPECT_EQ(S_OK, object->QueryInterface(__uuidof(I), itf.OutVoid()));
    return itf;
  }

  static std::wstring Get(IDispatch* control, const wchar_t* name) { return DispatchClient(control).GetString(name); }

  static HRESULT Put(IDispatch* control, const wchar_t* name, const wchar_t* value, EXCEPINFO* error = nullptr) {
    return DispatchClient(control).PutString(name, value, error);
  }

  static HRESULT PutLong(IDispatch* control, const wchar_t* name, LONG value) {
    VARIANT v;
    VariantInit(&v);
    V_VT(&v) = VT_I4;
    V_I4(&v) = value;
    return DispatchClient(control).Put(name, v);
  }

  // A real bitmap picture of the given size.
  static ComPtr<IPictureDisp> NewBitmapPicture(int width, int height) {
    PICTDESC desc = {};
    desc.cbSizeofstruct = sizeof(desc);
    desc.picType = PICTYPE_BITMAP;
    const HDC screen = GetDC(nullptr);
    desc.bmp.hbitmap = CreateCompatibleBitmap(screen, width, height);
    ReleaseDC(nullptr, screen);
    ComPtr<IPictureDisp> picture;
    EXPECT_EQ(S_OK, OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid()));
    return picture;
  }

  static SHORT PictureType(IPictureDisp* picture) {
    ComPtr<IPicture> pic;
    SHORT type = -1;
    if (picture && SUCCEEDED(picture->QueryInterface(IID_IPicture, pic.OutVoid()))) pic->get_Type(&type);
    return type;
  }
};

}  // namespace brevantis::testing
