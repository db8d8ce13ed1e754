// The settings of all printers of this process, kept in a JSON file between runs:
//
//   {"version": 1, "printers": {"USB001": {"DeviceSettings.Fax.Redials": "5", ...}}}
//
// Only values that differ from the first ones stand there. The file is replaced whole, so that a process
// that ends in the middle leaves the old one.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "vprinter/device/model.h"

namespace vprinter {

/// `Save` may be called from several threads.
class StateFile final {
  public:
    explicit StateFile(std::string path) : path_(std::move(path)) {}

    /// Reads the file, which need not exist; throws UserError.
    void Load();

    /// Gives a printer the values that the file has for it; throws UserError for one that does not fit.
    void Restore(const std::string& port, DeviceModel& model) const;

    /// Notes the values of one printer and replaces the file; false when it could not be written.
    [[nodiscard]] bool Save(const std::string& port, ValueMap values);

  private:
    [[nodiscard]] bool Replace() const;

    std::string path_;
    std::mutex lock_;
    std::map<std::string, ValueMap> printers_;  // those that are not served now are kept as they are
};

}  // namespace vprinter
