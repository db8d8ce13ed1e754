// The messages posted to a thread. A thread has a queue from its first call that asks for messages on.
#pragma once

#include "winport/module/thread_record.h"

namespace winport {

// The ending thread's queue goes, and what is in it.
void ForgetMessages(ThreadRecord& thread);

}  // namespace winport
