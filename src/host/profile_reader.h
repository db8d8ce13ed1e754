// Reads an initialisation file by section and key, and the texts of its values.
#pragma once

#include <cstdint>
#include <vector>

#include "kwt/wide_text.h"

namespace host {

/// One file, named by its full path; the file is read anew by every call.
class ProfileReader final {
  public:
    explicit ProfileReader(const WideText& path) : path_(path) {}

    /// The lines of a section, each with its whole text; at most 2,600 characters of the section are seen.
    [[nodiscard]] std::vector<WideText> Lines(const WCHAR* section) const;
    /// A value, cut to 259 characters; empty when it is missing.
    [[nodiscard]] WideText Text(const WCHAR* section, const WCHAR* key) const;
    [[nodiscard]] int32_t Integer(const WCHAR* section, const WCHAR* key, int32_t fallback) const;

  private:
    const WideText& path_;
};

/// Decimal text: blanks and a sign may lead, the first other character ends it, no digits give 0. Saturates.
[[nodiscard]] int32_t ParseInteger(WideView text);

}  // namespace host
