// Whole-text conversions between UTF-16 and the 8-bit ANSI code page, and copies into fixed buffers.
#pragma once

#include <cstddef>
#include <string>

#include "kwt/wide_text.h"

namespace kwt {

/// Owns the UTF-16 form of one 8-bit text, or nothing when the conversion produced nothing. Virtual, as the
/// next class: all modules of the package agree on the two.
class WideString {
  public:
    /// `text` is NUL-terminated 8-bit text in the ANSI code page; null owns nothing.
    explicit WideString(const char* text);
    WideString(const WideString&) = delete;
    WideString& operator=(const WideString&) = delete;
    virtual ~WideString();

    /// The owned NUL-terminated text, or null.
    [[nodiscard]] virtual WCHAR* GetBuffer() const;

  private:
    WCHAR* buffer_ = nullptr;
};

/// Owns the 8-bit form of one UTF-16 text, or nothing when the conversion produced nothing.
class AsciiString {
  public:
    /// `text` is NUL-terminated UTF-16; null owns nothing. What the code page cannot hold becomes its default
    /// character.
    explicit AsciiString(const WCHAR* text);
    AsciiString(const AsciiString&) = delete;
    AsciiString& operator=(const AsciiString&) = delete;
    virtual ~AsciiString();

    [[nodiscard]] virtual char* GetBuffer() const;

    /// A copy of the owned text; empty when nothing is owned.
    [[nodiscard]] std::string ToByteString() const;

  private:
    char* buffer_ = nullptr;
};

/// Copies at most sizeBytes/2 - 1 UTF-16 units of `source` and a terminator to `destination`.
/// `sizeBytes` is the size of the destination in bytes of UTF-16 text, at least 2.
void CopyBoundedWide(WCHAR* destination, const WCHAR* source, size_t sizeBytes);

/// The same from 8-bit text in the ANSI code page; a text that cannot be converted leaves an empty text.
void AsciiToWideBuffer(WCHAR* destination, const char* source, size_t sizeBytes);

}  // namespace kwt
