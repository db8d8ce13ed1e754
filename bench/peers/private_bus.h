// A D-Bus daemon of one measurement's own.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "engine/contender.h"
#include "engine/process.h"

inline std::string BusAddress(const Place& place) {
    return "unix:path=" + place.File("bus");
}

inline pid_t StartBus(const Place& place) {
    std::ofstream(place.File("bus.conf"))
        << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
           "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\"><busconfig><listen>"
        << BusAddress(place)
        << "</listen><policy context=\"default\"><allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
           "<allow own=\"*\"/><allow user=\"*\"/></policy></busconfig>";
    const pid_t daemon = Spawn({"dbus-daemon", "--nofork", "--config-file=" + place.File("bus.conf")});
    for (int looks = 0; !std::filesystem::exists(place.File("bus")); ++looks) {
        if (looks == 500) throw std::runtime_error("dbus-daemon does not start");
        usleep(10'000);
    }
    return daemon;
}
