// ParseURL of the HTTP and FTP clients: the URL made canonical, then cut
// into its parts, each part cut at its first NUL.
#pragma once

#include <optional>
#include <string_view>

#include "platform/internet.hpp"

namespace ostrivane {

// None where the transport cannot make the URL canonical or cut it.
std::optional<UrlParts> ParseURL(InternetTransport& transport, std::string_view url);

}  // namespace ostrivane
