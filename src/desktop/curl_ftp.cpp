// The FTP side of the transport. Not yet carried out: every call fails.
#include "desktop/curl_transport.hpp"

namespace ostrivane::desktop {

namespace {
constexpr std::uint32_t kNotCarriedOut = 12029;  // cannot connect
}  // namespace

InternetHandle CurlTransport::ConnectFtp(InternetHandle, std::string_view, std::uint16_t, std::string_view,
                                         std::string_view, std::uint32_t) {
    lastError_ = kNotCarriedOut;
    return 0;
}
bool CurlTransport::FtpSetCurrentDirectory(InternetHandle, std::string_view) { return false; }
bool CurlTransport::FtpCreateDirectory(InternetHandle, std::string_view) { return false; }
bool CurlTransport::FtpDeleteFile(InternetHandle, std::string_view) { return false; }
bool CurlTransport::FtpPutFile(InternetHandle, std::string_view, std::string_view, std::uint32_t) { return false; }
InternetHandle CurlTransport::FtpOpenFile(InternetHandle, std::string_view, std::uint32_t, std::uint32_t) {
    return 0;
}
InternetHandle CurlTransport::FtpFindFirstFile(InternetHandle, std::string_view) { return 0; }

}  // namespace ostrivane::desktop
