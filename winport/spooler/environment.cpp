#include "winport/spooler/environment.h"

#include <iterator>

#include "winport/text/case_fold.h"

namespace winport {

namespace {

constexpr Environment kEnvironments[] = {
    {u"Linux x64", u"x64"},
    {u"Linux x86", u"w32x86"},
    {u"Linux ARM64", u"arm64"},
};

#if defined(__x86_64__)
constexpr const Environment& kThis = kEnvironments[0];
#elif defined(__i386__)
constexpr const Environment& kThis = kEnvironments[1];
#elif defined(__aarch64__)
constexpr const Environment& kThis = kEnvironments[2];
#else
#error "Add this machine to kEnvironments."
#endif

}  // namespace

const Environment& ThisEnvironment() {
    return kThis;
}

const Environment* FindEnvironment(const char16_t* name) {
    if (name == nullptr || name[0] == u'\0') return &kThis;
    for (const Environment& environment : kEnvironments) {
        if (EqualsWithoutCase(environment.name, name)) return &environment;
    }
    return nullptr;
}

}  // namespace winport
