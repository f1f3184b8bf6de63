// What the web services take of the control's properties, as plain values.
#pragma once

#include <string>

namespace brevantis {

struct WebFacts {
  std::wstring programName;  // ProgramName: the assistant's captions, the CD prompt
  std::wstring companyName;  // CompanyName: the CD prompt's caption
  std::wstring osName;       // OSName: a name ending in "95" dials through the chooser
  std::wstring tempFolder;   // WinTempDir: where the browser probe goes ("": the system's)
};

}  // namespace brevantis
