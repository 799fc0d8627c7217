// The small window of the check.
#pragma once

#define IDD_PROGRESS 101
#define IDC_STEP_NAME 102
#define IDC_STEPS 103
