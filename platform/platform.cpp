#include "platform/platform.h"

namespace brevantis {
namespace {
Platform* g_platform = nullptr;
}  // namespace

Platform& CurrentPlatform() { return g_platform ? *g_platform : Win32Platform(); }

void SetPlatform(Platform* platform) { g_platform = platform; }

}  // namespace brevantis
