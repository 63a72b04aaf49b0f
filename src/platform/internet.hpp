// The transport under the library's HTTP and FTP clients: numbered handles
// that are opened, read and closed in the order the clients keep. Every
// decision (retries, statuses, messages, buffers) stays with the clients.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ostrivane {

// 0 is no handle.
using InternetHandle = std::uint32_t;

// Request flags.
inline constexpr std::uint32_t INTERNET_FLAG_RELOAD = 0x80000000u;
inline constexpr std::uint32_t INTERNET_FLAG_EXISTING_CONNECT = 0x20000000u;
inline constexpr std::uint32_t INTERNET_FLAG_NO_CACHE_WRITE = 0x04000000u;
inline constexpr std::uint32_t INTERNET_FLAG_NO_AUTO_REDIRECT = 0x00200000u;
inline constexpr std::uint32_t INTERNET_FLAG_PASSIVE = 0x08000000u;
inline constexpr std::uint32_t FTP_TRANSFER_TYPE_BINARY = 0x2u;
inline constexpr std::uint32_t GENERIC_READ = 0x80000000u;
// Access types of a session.
inline constexpr std::int32_t INTERNET_OPEN_TYPE_PRECONFIG = 0;
inline constexpr std::int32_t INTERNET_OPEN_TYPE_PROXY = 3;
// Services of a connection.
inline constexpr std::int32_t INTERNET_SERVICE_FTP = 1;
inline constexpr std::int32_t INTERNET_SERVICE_HTTP = 3;
inline constexpr std::uint16_t INTERNET_INVALID_PORT_NUMBER = 0;
// Modifiers of AddRequestHeaders.
inline constexpr std::uint32_t HTTP_ADDREQ_FLAG_ADD = 0x20000000u;
inline constexpr std::uint32_t HTTP_ADDREQ_FLAG_REPLACE = 0x80000000u;
// The last error after a failed FTP command: the server's words are in LastResponseInfo.
inline constexpr std::uint32_t ERROR_INTERNET_EXTENDED_ERROR = 12003;

// The parts of a URL; a part the URL does not have is empty.
struct UrlParts {
    std::string scheme, host, user, password, path, extra;  // extra: "?query#fragment"
    std::uint16_t port = 0;
};

struct InternetRead {
    bool ok = false;
    std::size_t bytes = 0;  // ok with 0 bytes: the end of the data
};

class InternetTransport {
public:
    virtual ~InternetTransport() = default;

    // Whether this machine is online; asked anew at each call.
    virtual bool GetConnectedState() = 0;
    // Dial-up where the platform has it; the call's success.
    virtual bool Autodial() = 0;
    virtual bool AutodialHangup() = 0;

    // The URL with unsafe characters escaped and dot segments resolved; none
    // when it is no URL.
    virtual std::optional<std::string> CanonicalizeUrl(std::string_view url) = 0;
    virtual std::optional<UrlParts> CrackUrl(std::string_view url) = 0;

    virtual InternetHandle OpenSession(std::string_view agent, std::int32_t accessType) = 0;
    // Sends a GET and returns once the head of the final reply is in (the
    // redirects followed unless INTERNET_FLAG_NO_AUTO_REDIRECT); 0 when no
    // server answered.
    virtual InternetHandle OpenUrl(InternetHandle session, std::string_view url, std::uint32_t flags) = 0;
    // Texts of the reply's head; none where the reply has no such field.
    virtual std::optional<std::string> QueryStatusCode(InternetHandle request) = 0;
    virtual std::optional<std::string> QueryContentLength(InternetHandle request) = 0;
    // Bytes of the body that a read would give at once; none on failure.
    virtual std::optional<std::int32_t> QueryDataAvailable(InternetHandle request) = 0;

    // An HTTP connection only notes where to go; an FTP connection logs in
    // and is 0 when that fails.
    virtual InternetHandle Connect(InternetHandle session, std::string_view host, std::uint16_t port,
                                   std::string_view user, std::string_view password, std::int32_t service,
                                   std::uint32_t flags) = 0;
    virtual InternetHandle OpenRequest(InternetHandle connection, std::string_view verb, std::string_view object,
                                       std::string_view version, std::uint32_t flags) = 0;
    virtual bool AddRequestHeaders(InternetHandle request, std::string_view headers, std::uint32_t modifiers) = 0;
    // Sends the request with its body and takes the head of the reply.
    virtual bool SendRequest(InternetHandle request, std::string_view body) = 0;

    // Up to size bytes of a reply or remote file into buffer. A transfer that
    // failed or was cut off by the peer ends as an end of data, and so does a
    // handle that has nothing to read, so that a reader's loop always ends.
    virtual InternetRead ReadFile(InternetHandle handle, char* buffer, std::size_t size) = 0;
    // 0 and handles already closed are passed over.
    virtual void CloseHandle(InternetHandle handle) = 0;

    // FTP, on a connection: the working directory, one directory level at a
    // time, and the files in it.
    virtual bool FtpSetCurrentDirectory(InternetHandle connection, std::string_view directory) = 0;
    virtual bool FtpCreateDirectory(InternetHandle connection, std::string_view directory) = 0;
    virtual bool FtpDeleteFile(InternetHandle connection, std::string_view name) = 0;
    virtual bool FtpPutFile(InternetHandle connection, std::string_view localFile, std::string_view remoteName,
                            std::uint32_t flags) = 0;
    virtual InternetHandle FtpOpenFile(InternetHandle connection, std::string_view name, std::uint32_t access,
                                       std::uint32_t flags) = 0;
    // A handle when a file of that name is there (the finder handle).
    virtual InternetHandle FtpFindFirstFile(InternetHandle connection, std::string_view name) = 0;

    // The error of the last failed call, and the server's last answer.
    virtual std::uint32_t GetLastError() = 0;
    virtual std::string LastResponseInfo() = 0;
};

}  // namespace ostrivane
