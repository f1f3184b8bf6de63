// The shared store: every property value of the control. There is one store
// per thread; every instance of the control on that thread reads and writes
// the same values.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <string>

#include "com/raii.h"
#include "model/properties.h"

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

 private:
  PropertyValue values_[kPropertyCount];
};

// The store of the calling thread, made on first use and kept for the thread's life.
Store& CurrentStore();

// A new picture object of type none, the control's empty picture.
ComPtr<IPictureDisp> CreateEmptyPicture();

}  // namespace brevantis
