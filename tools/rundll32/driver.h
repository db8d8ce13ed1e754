// What a set-up information file says about a printer model's driver.
#pragma once

#include "rundll32/inf_file.h"

namespace printui {

struct Driver {
    WideText model;
    WideText driverFile;
    WideText dataFile;
    WideText configFile;
    WideText helpFile;  // this and the following may be empty
    WideText monitor;
    WideText datatype;
};

// Throws a Refusal that names the file's models when the model is not among them.
[[nodiscard]] Driver FindDriver(const InfFile& file, const std::string& path, const WideText& model);

}  // namespace printui
