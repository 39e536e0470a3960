// SPDX-License-Identifier: MIT
#include "AaError.h"

#include "AaSysLog.h"

#include <cstdlib>

void AaErrorAssertionFailed(const char* condition, const char* file, uint32_t line)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Error, "Assertion failed: %s (file: %s, line: %u)",
                  condition ? condition : "(null)", file ? file : "(null)", line);
    std::abort();
}
