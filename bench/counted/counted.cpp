// counted COUNT    that many exchanges and parses, for callgrind to collect in `CountedExchange`, in
//                  `CountedTypedExchange`, which is the same through sdk.hpp, and in `CountedParse`
//
// How often a waiting thread looks is chance. Here a wait begins only once the counterpart, a process of its
// own, has long done its part and sleeps again, so that the first look succeeds: nothing is counted but the
// way there and back.
#include <dlfcn.h>
#include <unistd.h>
#include <windows.h>
#include <kestrel/sdk.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#include "engine/server.h"
#include "library/library.h"
#include "library/printer.h"
#include "opl/opl_parser.h"

namespace {

constexpr useconds_t kCounterpartUs = 2000;

template <typename Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// In the place of winport's own, for the library as well.

extern "C" __attribute__((visibility("default"))) DWORD WaitForSingleObject(HANDLE object,
                                                                            DWORD milliseconds) {
    static const auto next = Next<decltype(&WaitForSingleObject)>("WaitForSingleObject");
    if (milliseconds != 0) usleep(kCounterpartUs);
    return next(object, milliseconds);
}

extern "C" __attribute__((visibility("default"))) DWORD WaitForMultipleObjects(DWORD count,
                                                                               const HANDLE* objects,
                                                                               BOOL all, DWORD milliseconds) {
    static const auto next = Next<decltype(&WaitForMultipleObjects)>("WaitForMultipleObjects");
    if (milliseconds != 0) usleep(kCounterpartUs);
    return next(count, objects, all, milliseconds);
}

// Not inlined, and named for the tool: calls are collected by these names.

extern "C" __attribute__((visibility("default"), noinline)) bool CountedExchange() {
    uint8_t redials = 0;
    return GetFaxRedials(&redials, kTimeoutMs) != 0 && redials == 3;
}

extern "C" __attribute__((visibility("default"), noinline)) bool CountedTypedExchange(
    const kestrel::Printer& printer) {
    const auto redials = printer.get<kestrel::setting::fax_redials>();
    return redials && *redials == 3;
}

extern "C" __attribute__((visibility("default"), noinline)) bool CountedParse(std::string_view reply) {
    opl::OPLParser framer;
    const char* message = nullptr;
    uint32_t length = 0;
    int32_t value = 0;
    return framer.ParseStream(reply.data(), static_cast<uint32_t>(reply.size()), message, length) ==
               opl::ParseResult::MessageReady &&
           opl::OPLParser::GetIntValue({message, length}, value) && value == 3;
}

namespace {

bool Count(const kestrel::Printer& printer, int times) {
    bool right = true;
    for (int i = 0; i < times; ++i)
        right = CountedExchange() && CountedTypedExchange(printer) &&
                CountedParse("0000,DeviceSettings.Fax.Redials=3;") && right;
    return right;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    try {
        const TemporaryFolder folder;
        const Place place{folder.Path()};
        const Server server(kGetFaxRedials, place, false);
        SelectInstalledPrinter(place);
        const auto printer = kestrel::Printer::select().value();
        if (!SetFaxRedials(3, kTimeoutMs) || !Count(printer, std::atoi(argv[1]))) {
            std::fprintf(stderr, "counted: a wrong answer\n");
            return 1;
        }
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "counted: %s\n", failure.what());
        return 1;
    }
}
