// Resource ids of the information screens: dialog templates, pictures and
// the elements of each form. Shared by forms.rc, the forms and their tests.
#pragma once

// frmShowAbout: the program's about box and splash screen.
#define IDD_SHOWABOUT 2000
#define IDC_SHOWABOUT_IMAGE1 2001      // ProgramPicture, or Prglogo.bmp
#define IDC_SHOWABOUT_IMAGE2 2002      // CompanyLogo, a link to WebSiteURL
#define IDC_SHOWABOUT_IMAGE3 2003      // ProgramIcon
#define IDC_SHOWABOUT_LABEL2 2004      // Author1
#define IDC_SHOWABOUT_LABEL3 2005      // Author2
#define IDC_SHOWABOUT_LABEL4 2006      // Author3
#define IDC_SHOWABOUT_SYSINFO 2007     // cmdSysInfo
#define IDC_SHOWABOUT_LINE1 2008
#define IDC_SHOWABOUT_LINE2 2009
// Label1(i) is IDC_SHOWABOUT_LABEL1 + i, i from 0 to 3.
#define IDC_SHOWABOUT_LABEL1 2010
// Command1 ("Ok") is the dialog's own IDOK, so Enter presses it.

// frmabout: the control's own about box.
#define IDD_ABOUT 2100
#define IDC_ABOUT_IMAGE1 2101          // the maker's logo, a link
#define IDC_ABOUT_IMAGE2 2102
#define IDC_ABOUT_PICTURE1 2103
#define IDC_ABOUT_LINE1_0 2104
#define IDC_ABOUT_LINE1_1 2105
// Label1(i) is IDC_ABOUT_LABEL1 + i, i from 0 to 11.
#define IDC_ABOUT_LABEL1 2110

// Pictures stored with frmabout.
#define IDB_ABOUT_LOGO 2150
#define IDB_ABOUT_BAND 2151
#define IDB_ABOUT_EMBLEM 2152
