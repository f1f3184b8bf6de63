// What the services take of the control's properties, read from the store
// when a method is called.
#pragma once

#include "forms/forms.h"
#include "model/store.h"
#include "web/facts.h"

namespace brevantis {

WebFacts WebFactsOf(const Store& store);

// The program's facts for its about box or splash screen. Taking them writes
// the copyright years back as the box shows them.
ProgramFacts ProgramFactsOf(Store& store);

}  // namespace brevantis
