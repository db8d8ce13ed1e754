// Good numbers are ranges, bad ones a table; what is in neither is a general failure.
#include "session/response_judgement.h"

#include <windows.h>

#include "kestrel/sdk_errors.h"

namespace session {
namespace {

constexpr uint32_t kDeviceNotAvailable = 4319;

struct NumberRange {
    uint32_t first;
    uint32_t last;
};
constexpr NumberRange kGood[] = {{0, 1000}, {4000, 4199}, {100000, 100000}};

struct BadNumber {
    uint32_t number;
    uint32_t error;
};
constexpr BadNumber kBad[] = {
    {1999, ERROR_BUSY},
    {3400, ERROR_BAD_COMMAND},
    {3450, ERROR_CRC},
    {100003, kDeviceNotAvailable},
    {100004, ERROR_TIMEOUT},
    {100007, kDeviceNotAvailable},
    {100008, kDeviceNotAvailable},
    {100009, SDK_ERROR_NO_REPLY},
    {100103, ERROR_TIMEOUT},
    {100104, ERROR_TIMEOUT},
    {100113, ERROR_FILE_NOT_FOUND},
    {100114, ERROR_FILE_CORRUPT},
};

}  // namespace

uint32_t ErrorOfResponse(uint32_t number) {
    for (const NumberRange& range : kGood)
        if (number >= range.first && number <= range.last) return NO_ERROR;
    for (const BadNumber& bad : kBad)
        if (number == bad.number) return bad.error;
    return ERROR_GEN_FAILURE;
}

}  // namespace session
