// The walk over a dump: where it is, what it takes from there, and what it says of what it cannot take.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "shared/json.h"
#include "vprinter/device/model.h"
#include "vprinter/device/origin.h"

namespace vprinter {

inline constexpr size_t kMostMessage = 0x100FF;  // bytes of a request or reply

/// Every complaint is a UserError with the file, the place and the reason.
class DumpReader {
  public:
    DumpReader(const tools::Json& document, std::string name, DeviceModel& model)
        : document_(document), model_(model), name_(std::move(name)) {}
    DumpReader(const DumpReader&) = delete;
    DumpReader& operator=(const DumpReader&) = delete;

  protected:
    ~DumpReader() = default;

    // One step further in: status, inks, percent.
    class Place final {
      public:
        Place(DumpReader& reader, std::string_view name) : reader_(reader) {
            reader_.place_.emplace_back(name);
        }
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;
        ~Place() { reader_.place_.pop_back(); }

      private:
        DumpReader& reader_;
    };

    [[noreturn]] void Complain(std::string_view problem) const;

    // `read(value)` of a member that is there; an error in its place is kept as a reply.
    template <typename Read>
    void Member(const tools::Json& parent, std::string_view name, Read read) {
        const tools::Json* const value = parent.Find(name);
        if (value == nullptr) return;
        const Place place(*this, name);
        try {
            const tools::Json* const error = value->Find("error");
            error != nullptr ? KeepError(*error) : read(*value);
        } catch (const tools::JsonError& error) {
            Complain(error.what());
        }
    }
    template <typename Read>
    void Part(std::string_view name, Read read) {
        Member(document_, name, read);
    }

    // The reply to a whole request.
    void Keep(std::string_view request, std::string_view items, std::string_view number = "0000");
    // The value of a key, as people write it.
    void Set(std::string_view key, std::string_view text);
    void Set(opl::Key key, std::string_view text) { Set(opl::KeyText(key), text); }

    // In the printer's 8-bit code.
    [[nodiscard]] std::string Text(const tools::Json& value) const;
    [[nodiscard]] int64_t Number(const tools::Json& value, int64_t lowest, int64_t highest) const;
    [[nodiscard]] static std::string FlagText(const tools::Json& value) {
        return value.Flag() ? "YES" : "NO";
    }

    const tools::Json& document_;
    DeviceModel& model_;
    Origin origin_;

  private:
    void KeepError(const tools::Json& error);
    [[nodiscard]] std::string Message(const tools::Json& text) const;

    std::string name_;
    std::vector<std::string> place_;
};

}  // namespace vprinter
