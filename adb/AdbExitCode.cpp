#include "adb/AdbExitCode.h"

#include <algorithm>
#include <iterator>

namespace {

struct OUTCOME_ROW
{
    ADB_EXIT_CODE nCode;
    ADB_EXIT_CODE_ENTRY entry;
};

constexpr OUTCOME_ROW kOutcomes[] = {
#define ADB_OUTCOME_ROW(value, name, message) {name, {L"" #name, L"" message}},
    ADB_OUTCOMES(ADB_OUTCOME_ROW)
#undef ADB_OUTCOME_ROW
};

static_assert(std::size(kOutcomes) == 59);
static_assert(std::ranges::is_sorted(kOutcomes, {}, &OUTCOME_ROW::nCode));

} // namespace

bool LookupAdbExitCode(ADB_EXIT_CODE nCode, ADB_EXIT_CODE_ENTRY& entry)
{
    const OUTCOME_ROW* pRow = std::ranges::lower_bound(kOutcomes, nCode, {}, &OUTCOME_ROW::nCode);
    if (pRow == std::end(kOutcomes) || pRow->nCode != nCode) {
        return false;
    }
    entry = pRow->entry;
    return true;
}

ADB_EXIT_CODE_ENTRY DescribeAdbExitCode(ADB_EXIT_CODE nCode)
{
    ADB_EXIT_CODE_ENTRY entry = {L"Unknown ADB Exit Code", L"Unknown ADB Exit Code"};
    LookupAdbExitCode(nCode, entry);
    return entry;
}
