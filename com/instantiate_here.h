// Included before everything else in the control's own code (-include): the
// standard library's templates (strings above all) are instantiated where
// they are used, so only the members the control calls are linked, instead
// of the library's prebuilt copies of every member.
#pragma once

#include <bits/c++config.h>
#undef _GLIBCXX_EXTERN_TEMPLATE
#define _GLIBCXX_EXTERN_TEMPLATE 0
