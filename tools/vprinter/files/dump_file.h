// The file in which the client keeps everything that a printer says (`kestrel dump`), and the printer that is
// made from it. docs/vprinter.md has the form.
#pragma once

#include <string>
#include <string_view>

#include "shared/json.h"
#include "vprinter/device/model.h"
#include "vprinter/device/origin.h"

namespace vprinter {

class DumpFile final {
  public:
    /// Reads the file; throws UserError, which says where and why, for one that is no dump.
    [[nodiscard]] static DumpFile Load(const std::string& path);
    /// `name` stands for the file in complaints.
    [[nodiscard]] static DumpFile Parse(std::string_view text, const std::string& name);

    /// Gives a model the values of the dump as its first ones, and returns what is no value. Throws UserError
    /// for what the printer cannot be.
    [[nodiscard]] Origin Adopt(DeviceModel& model) const;

  private:
    DumpFile(tools::Json document, std::string name)
        : document_(std::move(document)), name_(std::move(name)) {}

    tools::Json document_;
    std::string name_;
};

}  // namespace vprinter
