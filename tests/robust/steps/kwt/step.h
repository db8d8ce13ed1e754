// The product's header of this name, for processes that are to end on the way of a message.
#pragma once

namespace kwt {

void Step(const char* place);

}  // namespace kwt
