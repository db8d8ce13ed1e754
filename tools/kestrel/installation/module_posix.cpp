// Nothing is unloaded before the process ends.
#include <dlfcn.h>
#include <fmt/core.h>

#include <filesystem>

#include "kestrel/failure.h"
#include "kestrel/installation/helpers.h"
#include "kestrel/installation/module.h"

namespace cli {

void* FindInModule(const std::string& module, const char* function, const std::string& library) {
    const std::filesystem::path path = FindHelper(module);
    void* const loaded = path.empty() ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (void* const found = loaded == nullptr ? nullptr : dlsym(loaded, function)) return found;
    throw Failure{ExitCode::OwnFault,
                  path.empty()
                      ? fmt::format("there is no {} beside this program or in its folder of helpers", module)
                      : fmt::format("cannot load {}: {}", module, dlerror()),
                  fmt::format("install the package kestrel-tools whole, or build with {}", library),
                  {},
                  {},
                  {}};
}

}  // namespace cli
