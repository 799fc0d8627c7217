// The small window of the check, and the page that lists its claims.
#pragma once

#define IDD_PROGRESS 101
#define IDC_STEP_NAME 102
#define IDC_STEPS 103
#define IDR_CLAIMS 104
