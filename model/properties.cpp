#include "model/properties.h"

#include "model/publisher.h"

namespace brevantis {

namespace {
constexpr auto S = PropType::String;
constexpr auto L = PropType::Long;
constexpr auto B = PropType::Bool;
constexpr auto P = PropType::Picture;
constexpr auto RW = Access::ReadWrite;
constexpr auto ENV = Access::Environment;
}  // namespace

const PropertyDef kProperties[kPropertyCount] = {
    // name                     dispid type default text               number access load  max
    {L"ProgramName",            10, S, L"",                             0,    RW,  true,  50},
    {L"Author1",                11, S, L"",                             0,    RW,  true,  0},
    {L"Author2",                12, S, L"",                             0,    RW,  true,  0},
    {L"Author3",                13, S, L"",                             0,    RW,  true,  0},
    {L"WebSiteURL",             14, S, publisher::kWebSite,             0,    RW,  true,  0},
    {L"ProgramPicture",         15, P, nullptr,                         0,    RW,  true,  0},
    {L"ProgramIcon",            16, P, nullptr,                         0,    RW,  true,  0},
    {L"ProgramMajor",           17, L, nullptr,                         0,    RW,  true,  0},
    {L"ProgramMinor",           18, L, nullptr,                         0,    RW,  true,  0},
    {L"ProgramRevision",        19, L, nullptr,                         0,    RW,  true,  0},
    {L"SplashScreenInterval",   20, L, nullptr,                         1000, RW,  true,  0},
    {L"CopyrightFromDate",      21, S, L"",                             0,    RW,  true,  0},
    {L"CopyrightToDate",        22, S, L"",                             0,    RW,  true,  0},
    {L"CompanyName",            23, S, publisher::kCompanyName,         0,    RW,  true,  0},
    {L"CompanyEmail",           24, S, publisher::kEmail,               0,    RW,  true,  0},
    {L"CompanyLogo",            25, P, nullptr,                         0,    RW,  true,  0},
    {L"AboutWavSound",          26, S, L"",                             0,    RW,  true,  0},
    {L"UpdatesURL",             27, S, publisher::kUpdatesUrl,          0,    RW,  true,  0},
    {L"DefaultProgramFolder",   28, S, L"Pellandra",                    0,    RW,  true,  0},
    {L"CompanyPhoneNumber",     29, S, publisher::kPhone,               0,    RW,  true,  0},
    {L"CompanyFaxNumber",       30, S, publisher::kFax,                 0,    RW,  true,  0},
    {L"Version",                31, S, L"",                             0,    Access::Version, false, 0},
    {L"CDIndexFile",            32, S, L"zo\\index.htm",                0,    RW,  true,  0},
    {L"IsWindowsNT",            33, B, nullptr,                         0,    ENV, false, 0},
    {L"WinSysDir",              34, S, L"",                             0,    ENV, false, 0},
    {L"WinTempDir",             35, S, L"",                             0,    ENV, false, 0},
    {L"OSName",                 36, S, L"",                             0,    ENV, false, 0},
};

}  // namespace brevantis
