#include "winport/registry/caller_memory.h"

#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace winport {

namespace {

bool Copy(std::uintptr_t from, void* to, std::size_t size) {
    const iovec own = {to, size};
    const iovec callers = {reinterpret_cast<void*>(from), size};
    return ::process_vm_readv(::getpid(), &own, 1, &callers, 1, 0) == static_cast<ssize_t>(size);
}

}  // namespace

bool IsReadable(const void* address, std::size_t size) {
    constexpr std::uintptr_t kPage = 4096;
    const auto begin = reinterpret_cast<std::uintptr_t>(address);
    if (size > UINTPTR_MAX - begin) return false;
    for (std::uintptr_t at = begin; at < begin + size; at = (at / kPage + 1) * kPage) {
        char byte = 0;
        if (!Copy(at, &byte, sizeof byte) && errno == EFAULT) return false;
    }
    return true;
}

std::optional<char16_t> UnitAt(const void* address) {
    char16_t unit = 0;
    if (!Copy(reinterpret_cast<std::uintptr_t>(address), &unit, sizeof unit)) return std::nullopt;
    return unit;
}

}  // namespace winport
