// What the control reports about the machine and about itself.
#pragma once

#include <string>

namespace brevantis {

struct EnvironmentSnapshot {
  bool isWindowsNT = false;
  std::wstring osName;
  std::wstring systemDirectory;
  std::wstring tempDirectory;  // without its trailing backslash
};

// Asks the system; a value that cannot be had is false or "".
EnvironmentSnapshot TakeEnvironmentSnapshot();

// major "###0", minor "00", revision "0000": 1, 3, 12 give 1.03.0012.
std::wstring FormatVersion(long major, long minor, long revision);

// The control's own version string, from its file version.
std::wstring ControlVersionString();

}  // namespace brevantis
