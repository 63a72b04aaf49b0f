// What the build gives the program: its version and the maker's addresses.
#pragma once

#include <cstdint>
#include <string>

namespace ostrivane {

std::int16_t VersionMajor();
std::int16_t VersionMinor();
// The major version, ".", the minor version in two digits: 2 and 5 read "2.05".
std::string VersionText();
// The host of the update server, before the per-user store has its say.
std::string UpdateHost();
std::string HomePage();
std::string SupportEmail();

}  // namespace ostrivane
