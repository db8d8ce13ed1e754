// There is no terminal library here.
#include "kestrel/commands/top.h"

namespace cli {

Report ShowTop(Context&, std::chrono::milliseconds) {
    throw UsageFailure("this system has no full screen for it", "use `kestrel watch`");
}

}  // namespace cli
