// The ids in the tests' resources.
#pragma once

#define IDD_TEXT 101   // nothing to focus
#define IDD_BOX 102    // a check box
#define IDD_FIELDS 103 // an edit, a push button, a disabled and a hidden edit, a check box
#define IDD_BUTTON 104 // a push button
#define IDD_ODD 105    // a control of a class that does not exist

#define IDC_TEXT 1001
#define IDC_BOX 1002
#define IDC_EDIT 1003
#define IDC_BUTTON 1004
#define IDC_DISABLED 1005
#define IDC_HIDDEN 1006
