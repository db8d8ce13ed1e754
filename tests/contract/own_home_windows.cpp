#include <stdlib.h>

#include "own_home.h"

// The system itself is the home: whoever runs the tests chooses it.
OwnHome::OwnHome() = default;
OwnHome::~OwnHome() = default;

void SetVariable(const char* name, const char* value) {
    _putenv_s(name, value);
}
