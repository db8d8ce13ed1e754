// Actions of the printer that run by themselves once they have been started.
#pragma once

#include "opl/vocabulary.h"
#include "session/kestrel_sdk.h"

namespace settings {

/// Starts the action of one of the maintenance words and waits for the answer, with a time-out of five
/// seconds. True when the printer takes it on. Any other answer is false without an error: the last-error
/// value is 0 and `lastResponseNum` is the printer's answer.
bool StartMaintenance(session::KestrelSDK& sdk, opl::Word action);

/// The same for cleaning the print head.
bool StartCleanHead(session::KestrelSDK& sdk, bool thoroughly);

}  // namespace settings
