// Saving and loading the control's properties: through a container's
// property bag, or through a stream in the control's own format (which is a
// property bag written out, so both ways share one load and one save).
#pragma once

#include <windows.h>
#include <ocidl.h>

namespace brevantis {

// Reads every saved property in the load order, takes the environment
// snapshot and sets Version. Nothing in the store changes unless all reads
// succeed; a failing read or a value of the wrong type is returned.
HRESULT LoadProperties(IPropertyBag* bag, IErrorLog* log);

// Writes every property in the save order; a value equal to its default is
// not written.
HRESULT SaveProperties(IPropertyBag* bag);

HRESULT LoadPropertiesFromStream(IStream* stream);
HRESULT SavePropertiesToStream(IStream* stream);
HRESULT PropertiesSizeMax(ULARGE_INTEGER* size);

}  // namespace brevantis
