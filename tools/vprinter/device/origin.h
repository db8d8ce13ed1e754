// What a printer that stands in for another one begins with, besides the values of its model.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace vprinter {

struct AccessPoint {
    std::string name;     // empty: hidden
    std::string address;  // six bytes, or none
    int64_t signalStrength = 0;
    int64_t beaconInterval = 0;
    int64_t capabilities = 0;
    int64_t channel = 0;
    int64_t encryption = 0;
};

struct Origin {
    /// Replies that the model would not make, by the whole request; an empty one is silence. They stand until
    /// the setting is set.
    std::map<std::string, std::string, std::less<>> replies;
    std::vector<AccessPoint> accessPoints;  // found before the first search of this run
    uint32_t pingsSent = 0;
    uint32_t pingsAnswered = 0;
};

}  // namespace vprinter
