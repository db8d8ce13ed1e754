// Conversions by the system, in the ANSI code page and whole.
#include "kwt/strings.h"

#include <algorithm>

namespace kwt {

namespace {

// Both directions ask for the size first; it counts the terminator, which the second pass then writes.
constexpr int kWholeText = -1;

}  // namespace

WideString::WideString(const char* text) {
    const int needed = MultiByteToWideChar(CP_ACP, 0, text, kWholeText, nullptr, 0);
    if (needed <= 0) return;
    buffer_ = new WCHAR[static_cast<size_t>(needed)];
    MultiByteToWideChar(CP_ACP, 0, text, kWholeText, buffer_, needed);
}

WideString::~WideString() {
    delete[] buffer_;
}

WCHAR* WideString::GetBuffer() const {
    return buffer_;
}

AsciiString::AsciiString(const WCHAR* text) {
    const int needed = WideCharToMultiByte(CP_ACP, 0, text, kWholeText, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return;
    buffer_ = new char[static_cast<size_t>(needed)];
    WideCharToMultiByte(CP_ACP, 0, text, kWholeText, buffer_, needed, nullptr, nullptr);
}

AsciiString::~AsciiString() {
    delete[] buffer_;
}

char* AsciiString::GetBuffer() const {
    return buffer_;
}

std::string AsciiString::ToByteString() const {
    const char* text = GetBuffer();
    return text != nullptr ? std::string(text) : std::string();
}

void CopyBoundedWide(WCHAR* destination, const WCHAR* source, size_t sizeBytes) {
    const size_t room = sizeBytes / sizeof(WCHAR) - 1;
    // A source longer than the room is not walked to its end.
    size_t length = 0;
    while (length < room && source[length] != 0)
        ++length;
    std::copy_n(source, length, destination);
    destination[length] = 0;
}

void AsciiToWideBuffer(WCHAR* destination, const char* source, size_t sizeBytes) {
    const WideString wide(source);
    constexpr WCHAR kEmpty[] = {0};
    CopyBoundedWide(destination, wide.GetBuffer() != nullptr ? wide.GetBuffer() : kEmpty, sizeBytes);
}

}  // namespace kwt
