// How an exported function with pointers of the caller reaches the calling thread's object.
#pragma once

#include <initializer_list>

#include "entry/export_call.h"
#include "kestrel/sdk_types.h"

inline constexpr kestrel_bool kFailure = 0;

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
