// The public headers in C++: two threads have two objects, and neither a printer, which is told in words.
#include <kestrel/sdk.hpp>

#include <thread>

int main() {
    uint32_t other = 0;
    std::thread([&other] { other = GetLastResponseNum(); }).join();
    const bool locked = Lock(0) != 0;  // leaves an error that must not be taken for the selection's
    const auto printer = kestrel::Printer::select("P");
    const bool told = !printer && printer.error().code == SDK_ERROR_NO_PRODUCT_PRINTER &&
                      printer.error().message().find("install the product") != std::string::npos;
    return kestrel::sdk_version() == 10 && other == 100000 && !locked && told ? 0 : 1;
}
