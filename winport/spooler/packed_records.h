// The spooler's answers: fixed records at the front of the caller's buffer, the texts they point to behind
// them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace winport {

// A record whose text members are still to be pointed into the buffer.
template <typename Info>
struct PackedRecord {
    struct Text {
        LPWSTR Info::*member;
        std::u16string text;
    };
    Info info = {};
    std::vector<Text> texts;
};

// Puts the bytes wanted into `needed`. Fills the buffer, or returns 122 and leaves it alone when `size` is
// below that.
template <typename Info>
DWORD Pack(const std::vector<PackedRecord<Info>>& records, LPBYTE buffer, DWORD size, DWORD& needed) {
    std::size_t bytes = records.size() * sizeof(Info);
    for (const auto& record : records) {
        for (const auto& text : record.texts)
            bytes += (text.text.size() + 1) * sizeof(WCHAR);
    }
    needed = static_cast<DWORD>(bytes);
    if (size < bytes) return ERROR_INSUFFICIENT_BUFFER;
    if (records.empty()) return ERROR_SUCCESS;
    if (buffer == nullptr) return ERROR_INVALID_PARAMETER;

    auto* info = reinterpret_cast<Info*>(buffer);
    auto* end = reinterpret_cast<LPWSTR>(buffer + records.size() * sizeof(Info));
    for (const auto& record : records) {
        *info = record.info;
        for (const auto& text : record.texts) {
            info->*text.member = end;
            end += text.text.copy(end, text.text.size());
            *end++ = u'\0';
        }
        ++info;
    }
    return ERROR_SUCCESS;
}

// A list of names, the records of level 1. Puts the number of records into `returned` when they fit.
template <typename Info>
DWORD PackNames(const std::vector<std::u16string>& names, LPBYTE buffer, DWORD size, DWORD& needed,
                DWORD& returned) {
    std::vector<PackedRecord<Info>> records;
    for (const std::u16string& name : names)
        records.push_back({{}, {{&Info::pName, name}}});
    const DWORD error = Pack(records, buffer, size, needed);
    if (error == ERROR_SUCCESS) returned = static_cast<DWORD>(records.size());
    return error;
}

}  // namespace winport
