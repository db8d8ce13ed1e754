#include "catalogue/rows.h"

#include <iterator>

#include "opl/vocabulary.h"

namespace {

using enum SettingType;
constexpr SettingType kPercent = kU8;

constexpr int32_t kNoIndex = -1;

/// The words of a table without its end mark.
template <size_t kSize>
constexpr std::span<const EnumEntry> WordsOf(const EnumEntry (&table)[kSize]) {
    return {table, kSize - 1};
}

// One line per row kind, in the order of SettingRow's members.
constexpr SettingRow kRows[] = {
#define SETTING_AS(base, name, read, write, words, bytes, about)                                   \
    {name,  KeyText(OplKey::base), k##read, "Get" #base, "Set" #base, k##read, k##write, kNoIndex, \
     bytes, WordsOf(k##words),     about},
#define READ_ONLY(base, name, type, words, bytes, about)                                      \
    {name,  KeyText(OplKey::base), k##type, "Get" #base, nullptr, k##type, k##type, kNoIndex, \
     bytes, WordsOf(k##words),     about},
#define WRITE_ONLY(function, base, name, type, words, about)                               \
    {name, KeyText(OplKey::base), k##type, nullptr, #function, k##type, k##type, kNoIndex, \
     0,    WordsOf(k##words),     about},
#define INDEXED(base, index, name, bytes, about) \
    {name,        KeyText(OplKey::base##index),  \
     kText,       "Get" #base,                   \
     "Set" #base, kText,                         \
     kText,       index,                         \
     bytes,       WordsOf(kNoWords),             \
     about},
#define WITHOUT_KEY(base, name, type, about) \
    {name, {}, k##type, "Get" #base, nullptr, k##type, k##type, kNoIndex, 0, WordsOf(kNoWords), about},
#include "catalogue/settings.def"
};

}  // namespace

std::span<const SettingRow> Catalogue() {
    return kRows;
}
