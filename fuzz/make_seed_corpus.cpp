// Writes the fuzzer's seed corpus: small valid streams made by the encoder
// itself, from an empty record list to a form with every property saved.
// Usage: make_seed_corpus DIR
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "model/property_codec.h"

namespace {

using brevantis::CodecType;
using brevantis::CodedValue;

void AppendLe(std::string* out, std::uint32_t v, int bytes) {
  for (int i = 0; i < bytes; ++i) out->push_back(static_cast<char>((v >> (8 * i)) & 0xff));
}

CodedValue Text(const std::u16string& name, const std::u16string& text) {
  std::string bytes;
  for (char16_t unit : text) AppendLe(&bytes, unit, 2);
  return {name, CodecType::String, bytes};
}

CodedValue Long(const std::u16string& name, std::int32_t number) {
  std::string bytes;
  AppendLe(&bytes, static_cast<std::uint32_t>(number), 4);
  return {name, CodecType::Long, bytes};
}

CodedValue Bool(const std::u16string& name, bool on) {
  return {name, CodecType::Bool, on ? std::string("\xff\xff", 2) : std::string(2, '\0')};
}

CodedValue Picture(const std::u16string& name, const std::string& bytes) { return {name, CodecType::Picture, bytes}; }

// An empty picture object's stream: the tag "lt" and no data.
std::string EmptyPicture() { return std::string("lt\0\0\0\0\0\0", 8); }

// A picture stream holding a small 24-bit .bmp file, as the control writes
// bitmaps.
std::string BitmapPicture(int width, int height) {
  const std::uint32_t stride = (width * 3 + 3) & ~3u;
  const std::uint32_t pixels = stride * height;
  std::string file = "BM";
  AppendLe(&file, 14 + 40 + pixels, 4);
  AppendLe(&file, 0, 4);
  AppendLe(&file, 14 + 40, 4);
  AppendLe(&file, 40, 4);
  AppendLe(&file, width, 4);
  AppendLe(&file, height, 4);
  AppendLe(&file, 1, 2);   // planes
  AppendLe(&file, 24, 2);  // bits per pixel
  AppendLe(&file, 0, 4);   // no compression
  AppendLe(&file, pixels, 4);
  file.append(16, '\0');   // resolution and palette counts
  for (std::uint32_t i = 0; i < pixels; ++i) file.push_back(static_cast<char>(i * 37));
  std::string stream = "lt";
  AppendLe(&stream, 0, 2);
  AppendLe(&stream, static_cast<std::uint32_t>(file.size()), 4);
  return stream + file;
}

// What a form saves for a control with every property changed, in the
// control's save order.
std::vector<CodedValue> FullForm() {
  return {Text(u"ProgramName", u"Pellandra Atlante"), Text(u"Author1", u"Giulia Ferr\u00e8"),
          Text(u"Author2", u"Marco Bini"), Text(u"Author3", u"Ana Su\u00e1rez"),
          Text(u"WebSiteURL", u"http://www.ostrel-edizioni.example/pellandra"),
          Picture(u"ProgramPicture", BitmapPicture(3, 2)), Picture(u"ProgramIcon", BitmapPicture(2, 2)),
          Long(u"ProgramMajor", 2), Long(u"ProgramMinor", 5), Long(u"ProgramRevision", 117),
          Long(u"SplashScreenInterval", 2500), Text(u"CopyrightFromDate", u"1997"),
          Text(u"CopyrightToDate", u"2001"), Text(u"CompanyName", u"Ostrel Edizioni s.r.l."),
          Text(u"CompanyEmail", u"atlante@ostrel-edizioni.example"), Picture(u"CompanyLogo", BitmapPicture(4, 1)),
          Text(u"AboutWavSound", u"C:\\Pellandra\\benvenuto.wav"),
          Text(u"UpdatesURL", u"http://www.ostrel-edizioni.example/aggiornamenti/pellandra"),
          Text(u"DefaultProgramFolder", u"Pellandra Atlante"), Text(u"CompanyPhoneNumber", u"+39 0123 456700"),
          Text(u"CompanyFaxNumber", u"+39 0123 456701"), Text(u"Version", u"1.3.1"),
          Text(u"CDIndexFile", u"atlante\\indice.htm"), Bool(u"IsWindowsNT", true),
          Text(u"WinSysDir", u"C:\\WINDOWS\\system32"), Text(u"WinTempDir", u"C:\\WINDOWS\\TEMP"),
          Text(u"OSName", u"Windows XP")};
}

// Names at the decoder's limit of 256 units and beyond the basic plane, and
// a long text.
std::vector<CodedValue> LongNames() {
  std::u16string longest(256, u'N');
  std::u16string wide = u"Nome\u00e8\u4e2d\U0001F600";
  std::u16string text;
  for (int i = 0; i < 300; ++i) text.push_back(static_cast<char16_t>(u'a' + i % 26));
  return {Text(longest, u"at the limit"), Long(longest.substr(1), 1), Text(wide, text)};
}

// Boundary values: an empty text, extreme numbers, false, a picture of no
// bytes, and a text of units no real text holds (NUL, 0xFFFF, a lone surrogate).
std::vector<CodedValue> EdgeValues() {
  return {Text(u"CompanyName", u""), Long(u"ProgramMajor", INT32_MIN), Long(u"ProgramMinor", INT32_MAX),
          Long(u"SplashScreenInterval", -1), Bool(u"IsWindowsNT", false), Picture(u"CompanyLogo", ""),
          Text(u"X", std::u16string{u'\0', u'\uffff', static_cast<char16_t>(0xdc00)})};
}

struct Seed {
  const char* file;
  std::vector<CodedValue> values;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DIR\n", argv[0]);
    return 2;
  }
  const Seed seeds[] = {
      {"empty.brvp", {}},
      {"every_type.brvp",
       {Text(u"ProgramName", u"Pellandra"), Long(u"ProgramMajor", 7), Bool(u"IsWindowsNT", true),
        Picture(u"CompanyLogo", EmptyPicture())}},
      {"new_control.brvp",
       {Picture(u"ProgramPicture", EmptyPicture()), Picture(u"ProgramIcon", EmptyPicture()),
        Picture(u"CompanyLogo", EmptyPicture())}},
      {"full_form.brvp", FullForm()},
      {"long_names.brvp", LongNames()},
      {"edge_values.brvp", EdgeValues()},
  };
  for (const Seed& seed : seeds) {
    const std::string path = std::string(argv[1]) + "/" + seed.file;
    std::ofstream out(path, std::ios::binary);
    out << brevantis::EncodeProperties(seed.values);
    if (!out.flush()) {
      std::fprintf(stderr, "cannot write %s\n", path.c_str());
      return 1;
    }
  }
  return 0;
}
