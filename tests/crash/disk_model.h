// What a disk may hold after a power loss. Names change in the order of the calls, and a sync of anything
// makes all earlier ones last, as in a journal; of bytes that were not synced any may be there.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "traced_writer.h"

namespace crash {

class DiskModel final {
  public:
    enum class Unsynced { Lost, Kept, Any };

    void Do(const Step& step);
    // Into an empty folder.
    void WriteImage(const std::filesystem::path& folder, Unsynced names, Unsynced bytes,
                    std::mt19937& random) const;

  private:
    struct File {
        std::string synced;
        std::vector<Step> unsynced;
    };
    using Names = std::map<std::string, std::shared_ptr<File>>;

    Names names_, syncedNames_;
};

}  // namespace crash
