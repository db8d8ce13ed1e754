// A process of its own that uses the registry, for tests that kill it or start it in another environment.
//   registry_probe create    exits with the result of making a key
//   registry_probe count     adds one to a number again and again, printing each after it was written
#include <windows.h>

#include <cstdio>
#include <string_view>

namespace {

int Count(HKEY key) {
    for (DWORD number = 1;; ++number) {
        const LSTATUS status = RegSetValueExW(key, TEXT("Count"), 0, REG_DWORD,
                                              reinterpret_cast<const BYTE*>(&number), sizeof number);
        if (status != ERROR_SUCCESS) return status;
        std::printf("%u\n", number);
        if (std::fflush(stdout) != 0) return ERROR_SUCCESS;  // the reader is gone
    }
}

}  // namespace

int main(int argc, char** argv) {
    HKEY key = nullptr;
    const LSTATUS status = RegCreateKeyW(HKEY_CURRENT_USER, TEXT("Probe"), &key);
    if (status != ERROR_SUCCESS || argc < 2 || std::string_view(argv[1]) != "count") return status;
    return Count(key);
}
