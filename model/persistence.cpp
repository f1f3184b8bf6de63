#include "model/persistence.h"

#include <olectl.h>
#include <algorithm>
#include <string>
#include <vector>

#include "com/failure.h"
#include "com/object.h"
#include "com/text.h"
#include "model/environment.h"
#include "model/picture_stream.h"
#include "model/property_codec.h"
#include "model/store.h"

namespace brevantis {
namespace {

// Bag reads ask for the property's own type; a container may use it as a hint.
VARTYPE BagType(PropType type) {
  switch (type) {
    case PropType::String: return VT_BSTR;
    case PropType::Long: return VT_I4;
    case PropType::Bool: return VT_BOOL;
    case PropType::Picture: return VT_DISPATCH;
  }
  return VT_EMPTY;
}

// Reads one property into value; an absent property gives its default.
HRESULT ReadProperty(IPropertyBag* bag, IErrorLog* log, const PropertyDef& def, PropertyValue* value) {
  Variant read;
  V_VT(read.Get()) = BagType(def.type);
  const HRESULT hr = bag->Read(def.name, read.Get(), log);
  if (hr == E_INVALIDARG || (SUCCEEDED(hr) && V_VT(read.Get()) == VT_EMPTY)) {
    value->text = def.defaultText ? def.defaultText : L"";
    value->number = def.defaultNumber;
    value->picture.Reset();  // pictures have no default: Nothing
    return S_OK;
  }
  if (FAILED(hr)) return hr;

  if (def.type == PropType::Picture) {
    value->picture.Reset();
    if (V_VT(read.Get()) == VT_NULL) return S_OK;
    if (V_VT(read.Get()) != VT_DISPATCH && V_VT(read.Get()) != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
    IUnknown* object = V_UNKNOWN(read.Get());
    if (!object) return S_OK;
    return object->QueryInterface(IID_IPictureDisp, value->picture.OutVoid()) == S_OK ? S_OK : DISP_E_TYPEMISMATCH;
  }
  Variant converted;
  RETURN_IF_FAILED(VariantChangeType(converted.Get(), read.Get(), 0, BagType(def.type)));
  if (def.type == PropType::String)
    value->text = FromBstr(V_BSTR(converted.Get()));
  else if (def.type == PropType::Long)
    value->number = V_I4(converted.Get());
  else
    value->number = V_BOOL(converted.Get()) ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT WriteProperty(IPropertyBag* bag, const PropertyDef& def, const PropertyValue& value) {
  Variant write;
  VARIANT* v = write.Get();
  switch (def.type) {
    case PropType::String:
      if (value.text == (def.defaultText ? def.defaultText : L"")) return S_OK;
      V_VT(v) = VT_BSTR;
      V_BSTR(v) = SysAllocStringLen(value.text.data(), static_cast<UINT>(value.text.size()));
      if (!V_BSTR(v)) return E_OUTOFMEMORY;
      break;
    case PropType::Long:
      if (value.number == def.defaultNumber) return S_OK;
      V_VT(v) = VT_I4;
      V_I4(v) = value.number;
      break;
    case PropType::Bool:
      if ((value.number != 0) == (def.defaultNumber != 0)) return S_OK;
      V_VT(v) = VT_BOOL;
      V_BOOL(v) = value.number ? VARIANT_TRUE : VARIANT_FALSE;
      break;
    case PropType::Picture:
      if (!value.picture) return S_OK;  // Nothing reads back as Nothing
      V_VT(v) = VT_DISPATCH;
      V_DISPATCH(v) = value.picture.Get();
      V_DISPATCH(v)->AddRef();
      break;
  }
  return bag->Write(def.name, v);
}

// A property bag in memory, in the order of writing: the stream format's
// values before they are encoded or after they are decoded.
class MemoryBag : public ComClassBase, public IPropertyBag {
 public:
  static const InterfaceEntry* Interfaces();

  STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
    if (!name || !value) return E_POINTER;
    for (const Entry& entry : entries_)
      if (entry.name == name) return VariantCopy(value, const_cast<VARIANT*>(entry.value.Get()));
    return E_INVALIDARG;
  }
  STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override {
    if (!name || !value) return E_POINTER;
    return Guarded([&] {
      entries_.emplace_back();
      entries_.back().name = name;
      return VariantCopy(entries_.back().value.Get(), value);
    });
  }

  HRESULT Encode(std::string* out) const;
  HRESULT Decode(const std::vector<CodedValue>& values);

 private:
  struct Entry {
    std::wstring name;
    Variant value;
  };
  std::vector<Entry> entries_;
};

const InterfaceEntry kMemoryBagInterfaces[] = {BREVANTIS_INTERFACE(MemoryBag, IPropertyBag), BREVANTIS_INTERFACE_END};
const InterfaceEntry* MemoryBag::Interfaces() { return kMemoryBagInterfaces; }

HRESULT MemoryBag::Encode(std::string* out) const {
  std::vector<CodedValue> values;
  for (const Entry& entry : entries_) {
    CodedValue coded;
    coded.name.assign(entry.name.begin(), entry.name.end());
    const VARIANT* v = entry.value.Get();
    switch (V_VT(v)) {
      case VT_BSTR: {
        coded.type = CodecType::String;
        const std::wstring text = FromBstr(V_BSTR(v));
        coded.bytes.assign(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
        break;
      }
      case VT_I4:
        coded.type = CodecType::Long;
        coded.bytes.assign(reinterpret_cast<const char*>(&V_I4(v)), 4);
        break;
      case VT_BOOL:
        coded.type = CodecType::Bool;
        coded.bytes.assign(reinterpret_cast<const char*>(&V_BOOL(v)), 2);
        break;
      case VT_DISPATCH: {
        coded.type = CodecType::Picture;
        RETURN_IF_FAILED(PictureToBytes(V_DISPATCH(v), &coded.bytes));
        break;
      }
      default:
        return DISP_E_TYPEMISMATCH;
    }
    values.push_back(std::move(coded));
  }
  *out = EncodeProperties(values);
  // Never save what the loader would refuse.
  return out->size() - kCodecHeaderSize <= kCodecMaxBodyBytes ? S_OK : E_OUTOFMEMORY;
}

HRESULT MemoryBag::Decode(const std::vector<CodedValue>& values) {
  for (const CodedValue& coded : values) {
    entries_.emplace_back();
    Entry& entry = entries_.back();
    entry.name.assign(coded.name.begin(), coded.name.end());
    VARIANT* v = entry.value.Get();
    switch (coded.type) {
      case CodecType::String:
        V_VT(v) = VT_BSTR;
        V_BSTR(v) = SysAllocStringByteLen(coded.bytes.data(), static_cast<UINT>(coded.bytes.size()));
        if (!V_BSTR(v)) return E_OUTOFMEMORY;
        break;
      case CodecType::Long:
        V_VT(v) = VT_I4;
        memcpy(&V_I4(v), coded.bytes.data(), 4);
        break;
      case CodecType::Bool:
        V_VT(v) = VT_BOOL;
        memcpy(&V_BOOL(v), coded.bytes.data(), 2);
        break;
      case CodecType::Picture: {
        IPictureDisp* picture = nullptr;
        RETURN_IF_FAILED(BytesToPicture(coded.bytes, &picture));
        V_VT(v) = VT_DISPATCH;
        V_DISPATCH(v) = picture;
        break;
      }
      default:
        return STG_E_DOCFILECORRUPT;
    }
  }
  return S_OK;
}

// Reads exactly size bytes, failing on a stream that ends first.
HRESULT ReadExactly(IStream* stream, void* data, ULONG size) {
  ULONG read = 0;
  RETURN_IF_FAILED(stream->Read(data, size, &read));
  return read == size ? S_OK : STG_E_READFAULT;
}

// The saved stream: its header and the body it names, the body read in
// pieces so that a corrupt length costs no more memory than the stream
// really holds.
HRESULT ReadSavedStream(IStream* stream, std::string* bytes) {
  constexpr std::uint32_t kPiece = 1 << 20;
  bytes->assign(kCodecHeaderSize, '\0');
  RETURN_IF_FAILED(ReadExactly(stream, &(*bytes)[0], kCodecHeaderSize));
  std::uint32_t length = 0;
  RETURN_HR_IF(STG_E_DOCFILECORRUPT,
               !DecodeHeader(reinterpret_cast<const unsigned char*>(bytes->data()), kCodecHeaderSize, &length));
  const size_t end = kCodecHeaderSize + size_t{length};
  while (bytes->size() < end) {
    const size_t at = bytes->size();
    const size_t want = std::min<size_t>(kPiece, end - at);
    bytes->resize(at + want);
    RETURN_IF_FAILED(ReadExactly(stream, &(*bytes)[at], static_cast<ULONG>(want)));
  }
  return S_OK;
}

}  // namespace

HRESULT LoadProperties(IPropertyBag* bag, IErrorLog* log) {
  if (!bag) return E_POINTER;
  return Guarded([&] {
    Store& store = CurrentStore();
    PropertyValue staged[kPropertyCount];
    EnvironmentSnapshot snapshot;
    for (int i = 0; i < kPropertyCount; ++i) {
      const PropertyDef& def = kProperties[i];
      if (def.loaded) {
        RETURN_IF_FAILED(ReadProperty(bag, log, def, &staged[i]));
      } else if (i == kVersion) {
        // Never read back: the version and the machine are this one's.
        snapshot = TakeEnvironmentSnapshot();
        staged[i].text = ControlVersionString();
      }
    }
    staged[kIsWindowsNT].number = snapshot.isWindowsNT ? VARIANT_TRUE : VARIANT_FALSE;
    staged[kWinSysDir].text = snapshot.systemDirectory;
    staged[kWinTempDir].text = snapshot.tempDirectory;
    staged[kOSName].text = snapshot.osName;
    for (int i = 0; i < kPropertyCount; ++i) store[static_cast<Prop>(i)] = std::move(staged[i]);
    return S_OK;
  });
}

HRESULT SaveProperties(IPropertyBag* bag) {
  if (!bag) return E_POINTER;
  return Guarded([&] {
    const Store& store = CurrentStore();
    for (int i = 0; i < kPropertyCount; ++i) {
      RETURN_IF_FAILED(WriteProperty(bag, kProperties[i], store[static_cast<Prop>(i)]));
    }
    return S_OK;
  });
}

HRESULT LoadPropertiesFromStream(IStream* stream) {
  if (!stream) return E_POINTER;
  return Guarded([&] {
    std::string bytes;
    RETURN_IF_FAILED(ReadSavedStream(stream, &bytes));
    std::vector<CodedValue> values;
    size_t used = 0;
    RETURN_HR_IF(STG_E_DOCFILECORRUPT,
                 !DecodeSavedStream(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), &values, &used));
    ComObject<MemoryBag>* memory = ComObject<MemoryBag>::New();
    RETURN_HR_IF(E_OUTOFMEMORY, !memory);
    const ComPtr<IPropertyBag> bag = ComPtr<IPropertyBag>::Adopt(memory);
    RETURN_IF_FAILED(memory->Decode(values));
    return LoadProperties(bag.Get(), nullptr);
  });
}

namespace {

HRESULT EncodeStore(std::string* encoded) {
  ComObject<MemoryBag>* memory = ComObject<MemoryBag>::New();
  if (!memory) return E_OUTOFMEMORY;
  const ComPtr<IPropertyBag> bag = ComPtr<IPropertyBag>::Adopt(memory);
  HRESULT hr = SaveProperties(bag.Get());
  return FAILED(hr) ? hr : memory->Encode(encoded);
}

}  // namespace

HRESULT SavePropertiesToStream(IStream* stream) {
  if (!stream) return E_POINTER;
  return Guarded([&] {
    std::string encoded;
    RETURN_IF_FAILED(EncodeStore(&encoded));
    ULONG written = 0;
    RETURN_IF_FAILED(stream->Write(encoded.data(), static_cast<ULONG>(encoded.size()), &written));
    return written == encoded.size() ? S_OK : STG_E_WRITEFAULT;
  });
}

HRESULT PropertiesSizeMax(ULARGE_INTEGER* size) {
  if (!size) return E_POINTER;
  return Guarded([&] {
    std::string encoded;
    const HRESULT hr = EncodeStore(&encoded);
    if (SUCCEEDED(hr)) size->QuadPart = encoded.size();
    return hr;
  });
}

}  // namespace brevantis
