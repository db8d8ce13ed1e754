// The calling thread's KestrelSDK: found in, made into and taken out of the library's thread-local slot.
#pragma once

#include "session/kestrel_sdk.h"

namespace entry {

using session::KestrelSDK;

/// Takes the slot while the library is being attached; false when the system has none left.
[[nodiscard]] bool TakeThreadSlot();

/// Gives the slot back; nothing happens when there is none. Objects of other threads are not destroyed.
void FreeThreadSlot();

/// A new thread starts without an object.
void ClearThreadSlot();

/// The calling thread's object, made on first use. Null when there can be none: last-error value 8 for lack
/// of memory, 1114 in a library whose attach was refused.
[[nodiscard]] KestrelSDK* GetThreadSDK();

/// The calling thread's object if it has one already; never makes one. The last-error value is then 0.
[[nodiscard]] KestrelSDK* PeekThreadSDK();

/// Destroys the calling thread's object, if any.
void ReleaseThreadSDK();

}  // namespace entry
