// Feeds every file of the corpus to its target once: what a fuzzer found stays mended.
//
//   corpus_replay FOLDER
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "own_folder.h"
#include "targets.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    int fed = 0;
    auto home = std::make_unique<OwnFolder>();
    for (const auto& targets : {fuzz::TextTargets(), fuzz::FileTargets(), fuzz::PanelTargets()}) {
        for (const fuzz::Target& target : targets) {
            const fs::path folder = fs::path(argv[1]) / target.name;
            fuzz::Require(fs::is_directory(folder), "every target has a corpus");
            for (const auto& entry : fs::directory_iterator(folder)) {
                std::ifstream file(entry.path(), std::ios::binary);
                const std::string bytes(std::istreambuf_iterator<char>(file), {});
                std::fprintf(stderr, "%s\n", entry.path().c_str());
                target.feed(bytes);
                ++fed;
            }
        }
    }
    std::printf("%d texts fed\n", fed);
    std::fflush(stdout);
    home.reset();
    std::_Exit(0);  // the counterpart's thread has nobody to end it
}
