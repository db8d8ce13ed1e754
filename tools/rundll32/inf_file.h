// Set-up information (INF) files: sections of "key = value, value" lines.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "rundll32/text.h"

namespace printui {

struct InfLine {
    WideText key;  // empty for a line of values alone
    std::vector<WideText> values;
};

class InfFile final {
  public:
    // Reads UTF-16 or UTF-8 text with a byte order mark, else text of the system's 8-bit code page. Throws a
    // Refusal when the file is not there, is none, or is not of this kind.
    [[nodiscard]] static InfFile Read(const std::string& path);

    // Null for an unknown section. Lines of sections of one name are together, texts between "%" put in.
    [[nodiscard]] const std::vector<InfLine>* Find(WideView section) const;
    // The values of a section's key; empty when either is missing.
    [[nodiscard]] std::vector<WideText> Values(WideView section, WideView key) const;
    // The first of them, or "".
    [[nodiscard]] WideText Value(WideView section, WideView key) const;

  private:
    void Parse(WideView text);
    void PutStringsIn();

    std::map<WideText, std::vector<InfLine>> sections_;  // names in lower case
};

}  // namespace printui
