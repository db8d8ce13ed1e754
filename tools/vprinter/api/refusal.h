// Why a request of the interface is not carried out.
#pragma once

#include <stdexcept>
#include <string>

namespace vprinter::api {

/// The number and the two texts of an answer that refuses.
struct Refusal final : std::runtime_error {
    Refusal(int httpStatus, const std::string& what, std::string whatToDo)
        : runtime_error(what), status(httpStatus), advice(std::move(whatToDo)) {}

    int status;
    std::string advice;
};

}  // namespace vprinter::api
