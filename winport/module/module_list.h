// The libraries that have told winport of their load-notice function.
#pragma once

namespace winport {

// The notices of a thread's begin and end, on that thread, under the loader lock.
void NotifyThreadStart();
void NotifyThreadEnd();

}  // namespace winport
