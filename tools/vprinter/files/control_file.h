// The file through which somebody changes a printer while it runs:
//
//   {"USB001": {"ink.black": 5, "status.error": "Paper_Jam", "device.online": false},
//    "*": {"DeviceNetwork.WiFiStatus.CurrentState": "Disconnected"},
//    "USB002": {"faults": [{"match": "*", "delay": 500}]}}
//
// What the file names for a port, or for every printer under "*", is set whenever the file has been written
// anew; what it does not name stays as it is. The rules under "faults" replace those that it named before.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "vprinter/device/model.h"
#include "vprinter/faults/fault_script.h"

namespace vprinter {

/// One printer's view of the file. Belongs to the printer's serving thread.
class ControlFile final {
  public:
    /// An empty path stands for no file.
    ControlFile(std::string path, std::string port) : path_(std::move(path)), port_(std::move(port)) {}

    /// Looks whether the file has been written since the last call, and sets what it says. Returns what is
    /// wrong with it, for people; a file that is not there, or not written anew, changes nothing. A file with
    /// an unknown name or a value that does not fit is refused as a whole; the file NAME.refused says why
    /// until one is taken.
    [[nodiscard]] std::string Apply(DeviceModel& model, FaultScript& faults, uint64_t nowMs);

  private:
    [[nodiscard]] bool IsWrittenAnew();
    [[nodiscard]] std::string Refuse(std::string problem);
    void TakeRefusalBack();

    std::string path_;
    std::string port_;
    std::filesystem::file_time_type writtenAt_ = std::filesystem::file_time_type::min();
    std::string text_;
    bool hasRefused_ = false;
};

}  // namespace vprinter
