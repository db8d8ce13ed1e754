// A folder of a suite's own, for its files and, where the system lets it, for its kernel objects, registry
// and printers too. Its path is in the variable KESTREL_TEST_FOLDER.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <system_error>

// Sets a variable of this process's environment, for its run-time and the programs that it starts.
void SetVariable(const char* name, const std::string& value);

// What this process has open, by its identity, but for what it keeps from the first use to its end. On
// Windows nothing: the system's own libraries open and close handles as they like.
std::map<std::string, std::string> OpenFiles();

// Made before the first Windows call. Where objects, registry and printers are the system's, suites run one
// after the other.
class OwnFolder final {
  public:
    OwnFolder() : path_(Make()) { SetVariable("KESTREL_TEST_FOLDER", path_.string()); }
    ~OwnFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;

  private:
    static std::filesystem::path Make();

    const std::filesystem::path path_;
};
