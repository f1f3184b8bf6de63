// Resource ids of the web services' forms.
#pragma once

#define IDD_RAS95 3100
#define IDC_RAS95_IMAGE1 3101
#define IDC_RAS95_LABEL1 3102
#define IDC_RAS95_LABEL2 3103
#define IDC_RAS95_COMBO1 3104
// Command1 and Command2 are the dialog's own Ok and Cancel, so Enter and Esc
// work as they do on any form.
#define IDC_RAS95_COMMAND1 1
#define IDC_RAS95_COMMAND2 2
