// Settings of the FTP side of the transport.
#pragma once

#include <cstdint>

namespace ostrivane::desktop {

// The port a connection takes when its caller names none: the service's
// own, 21, unless set otherwise (a local server on a port of its choosing).
void SetFtpServicePort(std::uint16_t port);

}  // namespace ostrivane::desktop
