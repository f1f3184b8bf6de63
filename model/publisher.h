// The publisher facts a newly placed control starts with. They name a
// fictional publisher; every host replaces them at design time.
#pragma once

namespace brevantis::publisher {

inline constexpr wchar_t kWebSite[] = L"http://www.ostrel-edizioni.example";
inline constexpr wchar_t kUpdatesUrl[] = L"http://www.ostrel-edizioni.example/aggiornamenti";
inline constexpr wchar_t kCompanyName[] = L"Ostrel Edizioni";
inline constexpr wchar_t kEmail[] = L"info@ostrel-edizioni.example";
inline constexpr wchar_t kPhone[] = L"+39 0123 456789";
inline constexpr wchar_t kFax[] = L"+39 0123 456790";

}  // namespace brevantis::publisher
