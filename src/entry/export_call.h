// How an exported function reaches the calling thread's object.
#pragma once

#include <windows.h>

#include <initializer_list>

#include "entry/thread_object.h"
#include "kestrel/sdk_types.h"

namespace entry {

inline constexpr kestrel_bool kFailure = 0;

/// `function()`, or `failure` with last-error value 8 when it throws: no exception leaves the library, and
/// memory is all that can run out here.
template <typename Result, typename Function>
Result WithoutExceptions(Result failure, Function function) noexcept {
    try {
        return function();
    } catch (...) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failure;
    }
}

/// `operation(object)` on the calling thread's object, or `failure` when there is none.
template <typename Result, typename Operation>
Result OnThreadSDK(Result failure, Operation operation) noexcept {
    return WithoutExceptions(failure, [&]() -> Result {
        KestrelSDK* const sdk = GetThreadSDK();
        return sdk != nullptr ? static_cast<Result>(operation(*sdk)) : failure;
    });
}

/// `operation(object)`, or failure with 87 when one of the pointers is null.
template <typename Operation>
kestrel_bool WithPointers(std::initializer_list<const void*> pointers, Operation operation) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) {
        for (const void* pointer : pointers) {
            if (pointer != nullptr) continue;
            SetLastError(ERROR_INVALID_PARAMETER);
            return false;
        }
        return operation(sdk);
    });
}

}  // namespace entry
