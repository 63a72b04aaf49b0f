#include "shell/deployment.hpp"

#include <cstdio>

namespace ostrivane {

std::int16_t VersionMajor() { return OSTRIVANE_VERSION_MAJOR; }
std::int16_t VersionMinor() { return OSTRIVANE_VERSION_MINOR; }
std::string VersionText() {
    char minor[8];
    std::snprintf(minor, sizeof minor, "%02d", static_cast<int>(VersionMinor()));
    return std::to_string(VersionMajor()) + "." + minor;
}
std::string UpdateHost() { return OSTRIVANE_UPDATE_HOST; }
std::string HomePage() { return OSTRIVANE_HOME_PAGE; }
std::string SupportEmail() { return OSTRIVANE_SUPPORT_EMAIL; }

}  // namespace ostrivane
