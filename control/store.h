// The shared store: every property value of the control and the flags the
// control's routines share. There is one store per thread; every instance of
// the control on that thread reads and writes the same values.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <olectl.h>
#include <memory>
#include <string>

#include "com/raii.h"
#include "control/properties.h"

namespace brevantis {

struct PropertyValue {
  std::wstring text;
  LONG number = 0;  // numbers; booleans as VARIANT_BOOL (0 or -1)
  ComPtr<IPictureDisp> picture;
};

class Store {
 public:
  Store() { Initialise(); }

  // Sets every property to its initial value, in the table's order.
  void Initialise();

  PropertyValue& operator[](Prop p) { return values_[p]; }
  const PropertyValue& operator[](Prop p) const { return values_[p]; }

  bool inErrorEvent = false;
  bool dialUpUnavailable = false;

  // Forms kept for the thread. Each is created on first need by the module
  // that owns it, which knows its type; the store only keeps it alive.
  std::shared_ptr<void> aboutForm;         // the control's about box (About)
  std::shared_ptr<void> programAboutForm;  // the program's about box and splash screen
  std::shared_ptr<void> assistantOwner;    // owner window of the dial-up dialog
  std::shared_ptr<void> dialUpChooser;     // the Windows 95 dial-up chooser

 private:
  PropertyValue values_[kPropertyCount];
};

// The store of the calling thread, created on first use. It lives as long as
// the thread: freeing it at thread exit would release COM objects (pictures,
// forms) from inside the loader's notification, where that is not safe.
Store& CurrentStore();

// A new picture object of type none, the control's empty picture.
ComPtr<IPictureDisp> CreateEmptyPicture();

}  // namespace brevantis
