// The port of a server that is a program of somebody else's: chosen by the server's side, told to the
// clients.
#pragma once

#include <fstream>
#include <string>

#include "engine/process.h"
#include "peers/peers.h"

inline std::string ChoosePort(const Place& place) {
    const std::string port = std::to_string(FreePort());
    std::ofstream(place.File("port")) << port;
    return port;
}

inline std::string ReadPort(const Place& place) {
    std::string port;
    std::ifstream(place.File("port")) >> port;
    return port;
}
