// The type library as LoadTypeLib reads it from Brevantis.ocx: every member
// of each interface in order, with its help string and context, and the
// attributes containers rely on.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "test_paths.h"

using namespace brevantis;

namespace {

struct Member {
  const wchar_t* name;
  const wchar_t* accessors;  // "func", or the property's accessors in order, as "get/put"
  DISPID dispid;
  DWORD helpContext;
  bool nonBrowsable;         // not in the property browser, still in object browsers
  const wchar_t* helpString;
};

const Member kControlMembers[] = {
    {L"About", L"func", -552, 10100, false,
     L"Displays the About Box for the control. Mostra la finestra informazioni per il controllo. Da essa \u00e8 possibile evincere il numero di versione esatto."},
    {L"OpenCD", L"func", 1, 10000, false,
     L"Opens the catalouge on CD. Apre il catalogo presente sul CD."},
    {L"ShowAbout", L"func", 2, 10020, false,
     L"Shows the about box. Mostra la schermata standard Informazioni sul programma."},
    {L"ShowSplashScreen", L"func", 3, 10030, false,
     L"Shows the splash screen. Mostra la schermata di avvio del programma."},
    {L"WebConnect", L"func", 4, 10040, false,
     L"Opens the default browser and connects to web site specified by URL parameter. Apre il browser predefinito e si connette al sito indicato nel parametro URL."},
    {L"ProgramName", L"get/put", 10, 220, false,
     L"Returns or sets the name of the program (at most 50 characters). Restituisce o imposta il nome del programma (al massimo 50 caratteri)."},
    {L"Author1", L"get/put", 11, 30, false,
     L"Returns or sets the name of the first author. Restituisce o imposta il nome del primo autore."},
    {L"Author2", L"get/put", 12, 40, false,
     L"Returns or sets the name of the second author. Restituisce o imposta il nome del secondo autore."},
    {L"Author3", L"get/put", 13, 50, false,
     L"Returns or sets the name of the third author. Restituisce o imposta il nome del terzo autore."},
    {L"WebSiteURL", L"get/put", 14, 270, true,
     L"Returns or sets the address of the publisher's web site. Restituisce o imposta l'indirizzo del sito web dell'editore."},
    {L"ProgramPicture", L"get/putref", 15, 230, false,
     L"Returns or sets the picture of the program. Restituisce o imposta l'immagine del programma."},
    {L"ProgramIcon", L"get/putref", 16, 170, false,
     L"Returns or sets the icon of the program. Restituisce o imposta l'icona del programma."},
    {L"ProgramMajor", L"get/put", 17, 190, true,
     L"Returns or sets the major version number of the program. Restituisce o imposta il numero di versione principale del programma."},
    {L"ProgramMinor", L"get/put", 18, 200, true,
     L"Returns or sets the minor version number of the program. Restituisce o imposta il numero di versione secondario del programma."},
    {L"ProgramRevision", L"get/put", 19, 240, true,
     L"Returns or sets the revision number of the program. Restituisce o imposta il numero di revisione del programma."},
    {L"SplashScreenInterval", L"get/put", 20, 250, false,
     L"Returns or sets how long the splash screen stays visible, in milliseconds. Restituisce o imposta la durata della schermata di avvio, in millisecondi."},
    {L"CopyrightFromDate", L"get/put", 21, 130, false,
     L"Returns or sets the first year of the copyright. Restituisce o imposta l'anno iniziale del copyright."},
    {L"CopyrightToDate", L"get/put", 22, 140, false,
     L"Returns or sets the last year of the copyright. Restituisce o imposta l'anno finale del copyright."},
    {L"CompanyName", L"get/put", 23, 110, false,
     L"Returns or sets the name of the publisher. Restituisce o imposta il nome dell'editore."},
    {L"CompanyEmail", L"get/put", 24, 80, false,
     L"Returns or sets the e-mail address of the publisher. Restituisce o imposta l'indirizzo di posta elettronica dell'editore."},
    {L"CompanyLogo", L"get/putref", 25, 100, false,
     L"Returns or sets the logo of the publisher. Restituisce o imposta il logo dell'editore."},
    {L"AboutWavSound", L"get/put", 26, 10, false,
     L"Returns or sets the sound file played when the about box opens. Restituisce o imposta il file sonoro riprodotto all'apertura della finestra informazioni."},
    {L"UpdatesURL", L"get/put", 27, 260, true,
     L"Returns or sets the address of the updates page. Restituisce o imposta l'indirizzo della pagina degli aggiornamenti."},
    {L"DefaultProgramFolder", L"get/put", 28, 150, false,
     L"Returns or sets the name of the program's folder under Program Files. Restituisce o imposta il nome della cartella del programma in Programmi."},
    {L"CompanyPhoneNumber", L"get/put", 29, 120, false,
     L"Returns or sets the telephone number of the publisher. Restituisce o imposta il numero di telefono dell'editore."},
    {L"CompanyFaxNumber", L"get/put", 30, 90, false,
     L"Returns or sets the fax number of the publisher. Restituisce o imposta il numero di fax dell'editore."},
    {L"Version", L"get/put", 31, 1270, false,
     L"Returns the version of the control currently loaded. Restituisce il numero di versione del controllo in uso."},
    {L"CDIndexFile", L"get/put", 32, 61, true,
     L"Returns or sets the path of the catalogue page relative to the root of the CD. Restituisce o imposta il percorso della pagina del catalogo rispetto alla radice del CD."},
    {L"IsWindowsNT", L"get/put", 33, 71, true,
     L"Returns whether the operative system is of NT type (NT4, 2000, XP).  La proprieta \u00e8 posta a vero se il sistema operativo \u00e8 di tipo NT  (NT4, 2000, XP)."},
    {L"WinSysDir", L"get/put", 34, 73, true,
     L"Returns the Windows System directory on the target system (e.g. C:\\Windows\\System).  Restituisce la directory Windows System."},
    {L"WinTempDir", L"get/put", 35, 74, true,
     L"Returns the Windows temporary directory on the target system (e.g. C:\\Windows\\Temp).  Restituisce la directory temporanea di Windows."},
    {L"OSName", L"get/put", 36, 72, true,
     L"Returns the operative system name (e.g. Microsoft Windows 2000) . Restituisceil nome del sitema operativo (p.e. Microsoft Windows 2000)"},
};
const Member kCryptoMembers[] = {
    {L"InBuffer", L"get/put", 1, 2010, false,
     L"Returns or sets the input text of every method. Restituisce o imposta il testo in ingresso di ogni metodo."},
    {L"OutBuffer", L"get", 2, 2020, false,
     L"Returns the result of Encrypt and Decrypt. Restituisce il risultato di Encrypt e Decrypt."},
    {L"Signature", L"get/put", 3, 2030, false,
     L"Returns or sets the signature made by Sign and checked by Validate. Restituisce o imposta la firma prodotta da Sign e verificata da Validate."},
    {L"Sign", L"func", 4, 2040, false,
     L"Signs InBuffer with the user's signature key. Firma InBuffer con la chiave di firma dell'utente."},
    {L"Validate", L"func", 5, 2050, false,
     L"Checks Signature against InBuffer. Verifica Signature rispetto a InBuffer."},
    {L"Encrypt", L"func", 6, 2060, false,
     L"Encrypts InBuffer with Password into OutBuffer. Cifra InBuffer con Password in OutBuffer."},
    {L"Decrypt", L"func", 7, 2070, false,
     L"Decrypts InBuffer with Password into OutBuffer. Decifra InBuffer con Password in OutBuffer."},
    {L"Status", L"get", 8, 2080, false,
     L"Returns the outcome of the last method: 0 running, 1 done, 2 signature confirmed. Restituisce l'esito dell'ultimo metodo: 0 in corso, 1 terminato, 2 firma confermata."},
    {L"Password", L"get/put", 9, 2090, false,
     L"Returns or sets the pass phrase of Encrypt and Decrypt. Restituisce o imposta la frase chiave di Encrypt e Decrypt."},
};

const wchar_t* AccessorName(INVOKEKIND kind) {
  switch (kind) {
    case INVOKE_PROPERTYGET: return L"get";
    case INVOKE_PROPERTYPUT: return L"put";
    case INVOKE_PROPERTYPUTREF: return L"putref";
    default: return L"func";
  }
}

class TypeLibTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, LoadTypeLibEx(BREVANTIS_OCX_PATH, REGKIND_NONE, lib_.Out()));
  }

  ComPtr<ITypeInfo> Info(REFGUID guid) {
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(S_OK, lib_->GetTypeInfoOfGuid(guid, info.Out()));
    return info;
  }

  // The vtable half of a dual interface.
  ComPtr<ITypeInfo> VtableInfo(REFGUID guid) {
    ComPtr<ITypeInfo> info = Info(guid), vtable;
    HREFTYPE ref = 0;
    EXPECT_EQ(S_OK, info->GetRefTypeOfImplType(static_cast<UINT>(-1), &ref));
    EXPECT_EQ(S_OK, info->GetRefTypeInfo(ref, vtable.Out()));
    return vtable;
  }

  struct Attr {
    TYPEKIND kind;
    WORD flags, major, minor, funcs;
  };
  static Attr Attributes(ITypeInfo* info) {
    TYPEATTR* attr = nullptr;
    EXPECT_EQ(S_OK, info->GetTypeAttr(&attr));
    const Attr result{attr->typekind, attr->wTypeFlags, attr->wMajorVerNum, attr->wMinorVerNum, attr->cFuncs};
    info->ReleaseTypeAttr(attr);
    return result;
  }

  // Walks the functions of info and compares them with the table, grouping
  // consecutive accessors of one property.
  static void ExpectMembers(ITypeInfo* info, const Member* table, size_t count) {
    struct Seen {
      std::wstring name, accessors, helpString;
      DISPID dispid;
      DWORD helpContext;
      bool nonBrowsable;
    };
    std::vector<Seen> seen;
    const WORD funcs = Attributes(info).funcs;
    for (UINT i = 0; i < funcs; ++i) {
      FUNCDESC* desc = nullptr;
      ASSERT_EQ(S_OK, info->GetFuncDesc(i, &desc));
      Bstr name, helpString;
      DWORD context = 0;
      ASSERT_EQ(S_OK, info->GetDocumentation(desc->memid, name.Out(), helpString.Out(), &context, nullptr));
      // Slots follow IDispatch's seven, in order.
      EXPECT_EQ(static_cast<SHORT>((7 + i) * sizeof(void*)), desc->oVft) << name.Get();
      // Hidden would take a member out of IntelliSense: no member is.
      EXPECT_EQ(0, desc->wFuncFlags & FUNCFLAG_FHIDDEN) << name.Get();
      const bool nonBrowsable = (desc->wFuncFlags & FUNCFLAG_FNONBROWSABLE) != 0;
      if (!seen.empty() && seen.back().name == name.Get() && desc->invkind != INVOKE_FUNC) {
        seen.back().accessors += std::wstring(L"/") + AccessorName(desc->invkind);
      } else {
        seen.push_back({name.Get(), AccessorName(desc->invkind), helpString.Get() ? helpString.Get() : L"",
                        desc->memid, context, nonBrowsable});
      }
      info->ReleaseFuncDesc(desc);
    }
    ASSERT_EQ(count, seen.size());
    for (size_t i = 0; i < count; ++i) {
      SCOPED_TRACE(table[i].name);
      EXPECT_EQ(table[i].name, seen[i].name);
      EXPECT_EQ(table[i].accessors, seen[i].accessors);
      EXPECT_EQ(table[i].dispid, seen[i].dispid);
      EXPECT_EQ(table[i].helpContext, seen[i].helpContext);
      EXPECT_EQ(table[i].nonBrowsable, seen[i].nonBrowsable);
      EXPECT_EQ(table[i].helpString, seen[i].helpString);
    }
  }

  ComPtr<ITypeLib> lib_;
};

TEST_F(TypeLibTest, LibraryAttributes) {
  TLIBATTR* attr = nullptr;
  ASSERT_EQ(S_OK, lib_->GetLibAttr(&attr));
  EXPECT_TRUE(IsEqualGUID(LIBID_BrevantisLib, attr->guid));
  EXPECT_EQ(1, attr->wMajorVerNum);
  EXPECT_EQ(3, attr->wMinorVerNum);
  EXPECT_EQ(0x409u, attr->lcid);
  lib_->ReleaseTLibAttr(attr);

  Bstr name, help, helpFile;
  ASSERT_EQ(S_OK, lib_->GetDocumentation(-1, name.Out(), help.Out(), nullptr, helpFile.Out()));
  EXPECT_STREQ(L"BrevantisLib", name.Get());
  EXPECT_STREQ(L"Ostrel Brevantis ActiveX Control", help.Get());
  const std::wstring file(helpFile.Get());
  EXPECT_EQ(L"Brevantis.chm", file.substr(file.size() - 13));
}

TEST_F(TypeLibTest, ControlInterfaceMembersInOrder) {
  ComPtr<ITypeInfo> dispatch = Info(IID__Brevantis);
  const Attr attr = Attributes(dispatch.Get());
  EXPECT_EQ(TKIND_DISPATCH, attr.kind);
  EXPECT_EQ(TYPEFLAG_FHIDDEN | TYPEFLAG_FDUAL | TYPEFLAG_FNONEXTENSIBLE | TYPEFLAG_FDISPATCHABLE, attr.flags);
  EXPECT_EQ(1, attr.major);
  EXPECT_EQ(2, attr.minor);
  ComPtr<ITypeInfo> vtable = VtableInfo(IID__Brevantis);
  const Attr vtableAttr = Attributes(vtable.Get());
  EXPECT_EQ(TKIND_INTERFACE, vtableAttr.kind);
  EXPECT_TRUE(vtableAttr.flags & TYPEFLAG_FOLEAUTOMATION);
  EXPECT_TRUE(vtableAttr.flags & TYPEFLAG_FDUAL);
  ExpectMembers(vtable.Get(), kControlMembers, sizeof(kControlMembers) / sizeof(Member));
}

TEST_F(TypeLibTest, WebConnectTakesAnOptionalStringByValue) {
  ComPtr<ITypeInfo> info = VtableInfo(IID__Brevantis);
  FUNCDESC* desc = nullptr;
  ASSERT_EQ(S_OK, info->GetFuncDesc(4, &desc));
  ASSERT_EQ(1, desc->cParams);
  EXPECT_EQ(VT_BSTR, desc->lprgelemdescParam[0].tdesc.vt);
  const USHORT flags = desc->lprgelemdescParam[0].paramdesc.wParamFlags;
  EXPECT_TRUE(flags & PARAMFLAG_FIN);
  EXPECT_TRUE(flags & PARAMFLAG_FOPT);
  info->ReleaseFuncDesc(desc);
}

TEST_F(TypeLibTest, PicturesAreStandardPictureObjectsPutByReference) {
  ComPtr<ITypeInfo> info = VtableInfo(IID__Brevantis);
  FUNCDESC* desc = nullptr;
  ASSERT_EQ(S_OK, info->GetFuncDesc(16, &desc));  // putref ProgramPicture
  ASSERT_EQ(INVOKE_PROPERTYPUTREF, desc->invkind);
  const TYPEDESC& param = desc->lprgelemdescParam[0].tdesc;
  ASSERT_EQ(VT_PTR, param.vt);
  ASSERT_EQ(VT_USERDEFINED, param.lptdesc->vt);
  ComPtr<ITypeInfo> picture;
  ASSERT_EQ(S_OK, info->GetRefTypeInfo(param.lptdesc->hreftype, picture.Out()));
  Bstr name;
  picture->GetDocumentation(MEMBERID_NIL, name.Out(), nullptr, nullptr, nullptr);
  EXPECT_STREQ(L"IPictureDisp", name.Get());
  // The standard one, from the OLE Automation library, not a copy of our own.
  ComPtr<ITypeLib> container;
  UINT index = 0;
  ASSERT_EQ(S_OK, picture->GetContainingTypeLib(container.Out(), &index));
  TLIBATTR* attr = nullptr;
  ASSERT_EQ(S_OK, container->GetLibAttr(&attr));
  const GUID stdole = {0x00020430, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
  EXPECT_TRUE(IsEqualGUID(stdole, attr->guid));
  container->ReleaseTLibAttr(attr);
  info->ReleaseFuncDesc(desc);
}

TEST_F(TypeLibTest, EventInterfaceHasTheErrorEvent) {
  ComPtr<ITypeInfo> events = Info(DIID___Brevantis);
  const Attr attr = Attributes(events.Get());
  EXPECT_EQ(TKIND_DISPATCH, attr.kind);
  EXPECT_TRUE(attr.flags & TYPEFLAG_FHIDDEN);
  EXPECT_EQ(1, attr.major);
  EXPECT_EQ(2, attr.minor);
  ASSERT_EQ(1, attr.funcs);

  FUNCDESC* desc = nullptr;
  ASSERT_EQ(S_OK, events->GetFuncDesc(0, &desc));
  EXPECT_EQ(1, desc->memid);
  ASSERT_EQ(2, desc->cParams);
  EXPECT_EQ(VT_PTR, desc->lprgelemdescParam[0].tdesc.vt);
  EXPECT_EQ(VT_I2, desc->lprgelemdescParam[0].tdesc.lptdesc->vt);
  EXPECT_EQ(VT_PTR, desc->lprgelemdescParam[1].tdesc.vt);
  EXPECT_EQ(VT_BSTR, desc->lprgelemdescParam[1].tdesc.lptdesc->vt);
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(PARAMFLAG_FIN | PARAMFLAG_FOUT, desc->lprgelemdescParam[i].paramdesc.wParamFlags & (PARAMFLAG_FIN | PARAMFLAG_FOUT));
  events->ReleaseFuncDesc(desc);

  Bstr name, help;
  DWORD context = 0;
  ASSERT_EQ(S_OK, events->GetDocumentation(1, name.Out(), help.Out(), &context, nullptr));
  EXPECT_STREQ(L"Error", name.Get());
  EXPECT_EQ(1000u, context);
  EXPECT_STREQ(L"Fired when a non blocking error occurs during operations. Attivato in presenza di un errore\r\n"
               L"non bloccante durante le operazioni.", help.Get());
}

TEST_F(TypeLibTest, ControlClassIsAControlWithItsEvents) {
  ComPtr<ITypeInfo> coclass = Info(CLSID_Brevantis);
  const Attr attr = Attributes(coclass.Get());
  EXPECT_EQ(TKIND_COCLASS, attr.kind);
  EXPECT_TRUE(attr.flags & TYPEFLAG_FCONTROL);
  EXPECT_TRUE(attr.flags & TYPEFLAG_FCANCREATE);

  const struct { const GUID* iid; int flags; } expected[] = {
      {&IID__Brevantis, IMPLTYPEFLAG_FDEFAULT},
      {&DIID___Brevantis, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE},
  };
  for (UINT i = 0; i < 2; ++i) {
    int flags = 0;
    HREFTYPE ref = 0;
    ComPtr<ITypeInfo> itf;
    ASSERT_EQ(S_OK, coclass->GetImplTypeFlags(i, &flags));
    ASSERT_EQ(S_OK, coclass->GetRefTypeOfImplType(i, &ref));
    ASSERT_EQ(S_OK, coclass->GetRefTypeInfo(ref, itf.Out()));
    TYPEATTR* itfAttr = nullptr;
    ASSERT_EQ(S_OK, itf->GetTypeAttr(&itfAttr));
    EXPECT_TRUE(IsEqualGUID(*expected[i].iid, itfAttr->guid));
    itf->ReleaseTypeAttr(itfAttr);
    EXPECT_EQ(expected[i].flags, flags);
  }
}

TEST_F(TypeLibTest, CryptoInterfaceMembersInSlotOrder) {
  ComPtr<ITypeInfo> coclass = Info(CLSID_clsCryptoFilterBox);
  EXPECT_TRUE(Attributes(coclass.Get()).flags & TYPEFLAG_FCANCREATE);
  EXPECT_FALSE(Attributes(coclass.Get()).flags & TYPEFLAG_FCONTROL);
  EXPECT_TRUE(Attributes(Info(IID__clsCryptoFilterBox).Get()).flags & TYPEFLAG_FDUAL);
  ExpectMembers(VtableInfo(IID__clsCryptoFilterBox).Get(), kCryptoMembers, sizeof(kCryptoMembers) / sizeof(Member));
}

}  // namespace
