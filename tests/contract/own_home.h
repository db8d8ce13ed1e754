// Tests of several processes run at once and must not see each other's objects, registry and printers.
#pragma once

// A home of this process's own while it lives. Made before the first Windows call.
class OwnHome final {
  public:
    OwnHome();
    ~OwnHome();
    OwnHome(const OwnHome&) = delete;
    OwnHome& operator=(const OwnHome&) = delete;
};

// Sets a variable of this process's environment, for its run-time and the programs that it starts.
void SetVariable(const char* name, const char* value);
