// The settings of one printer and their values.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vprinter/device/setting_spec.h"

namespace vprinter {

struct Setting {
    SettingSpec spec;
    std::string value;  // unescaped text, or the four bytes of an address
    std::string reply;  // "0000,Key=value;", ready to be sent

    /// What a reply of several items holds for this setting.
    [[nodiscard]] std::string_view Item() const;
    /// The value as people write it: an address dotted.
    [[nodiscard]] std::string Text() const;
};

/// Values by key, as people write them.
using ValueMap = std::map<std::string, std::string>;

/// Belongs to the printer's serving thread. Settings keep their place for the model's life.
class DeviceModel final {
  public:
    explicit DeviceModel(std::vector<SettingSpec> specs = PrinterSettings());

    /// Null when the printer has no such setting. Allocates nothing.
    [[nodiscard]] Setting* Find(std::string_view key);
    [[nodiscard]] std::span<const Setting> All() const { return settings_; }
    /// Of a key that the printer has.
    [[nodiscard]] const Setting& Get(std::string_view key) const {
        return settings_[positions_.find(key)->second];
    }
    [[nodiscard]] const std::string& Value(std::string_view key) const { return Get(key).value; }
    [[nodiscard]] int64_t Number(std::string_view key) const;
    [[nodiscard]] bool Flag(std::string_view key) const { return Value(key) == "YES"; }
    /// For what the printer does of its own accord; the value has to fit.
    void Change(std::string_view key, std::string_view value);

    /// Sets from what a request carries: `value` still escaped, or the bytes of a binary block. Returns what
    /// is wrong with it, in the words of a reply text; empty when the value has been taken.
    [[nodiscard]] std::string Set(Setting& setting, std::string_view value, bool binary);

    /// The same from a text as people write it (addresses dotted, nothing escaped).
    [[nodiscard]] std::string SetFromText(Setting& setting, std::string_view text);

    /// What `SetFromText` would find wrong.
    [[nodiscard]] static std::string Check(const Setting& setting, std::string_view text);

    /// A first value of this printer's own, which its resets go back to.
    [[nodiscard]] std::string SetInitial(std::string_view key, std::string_view text);

    /// The same for a value that another printer gave: of a number, whatever fits 32 bits.
    [[nodiscard]] std::string Adopt(std::string_view key, std::string_view text);

    /// Of the settings that can be set.
    void RestoreDefaults(std::string_view keyPrefix);

    /// All values as they are now, for PutBack.
    [[nodiscard]] std::vector<std::string> Values() const;
    void PutBack(std::vector<std::string> values);

    /// The values that differ from the first ones; what is live leaves none, nor what can only be set.
    [[nodiscard]] ValueMap ChangedValues() const;
    /// Counts the values taken so far; a change of it is the time to save.
    [[nodiscard]] uint64_t Revision() const { return revision_; }

  private:
    void Store(Setting& setting, std::string value);

    std::vector<Setting> settings_;
    std::vector<std::string> initials_;  // stored form, by position
    std::unordered_map<std::string_view, size_t> positions_;
    uint64_t revision_ = 0;
};

/// "192.168.0.1" as four bytes; empty when the text is no address.
[[nodiscard]] std::string AddressBytes(std::string_view dotted);
/// The other way round, of four bytes.
[[nodiscard]] std::string DottedAddress(std::string_view bytes);

}  // namespace vprinter
