// The public header in C++: two threads have two objects, and neither a printer.
#include <kestrel/sdk.h>

#include <thread>

int main() {
    uint32_t other = 0;
    std::thread([&other] { other = GetLastResponseNum(); }).join();
    return GetSDKVersion() == 10 && other == 100000 && !Lock(0) ? 0 : 1;
}
