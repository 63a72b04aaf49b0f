// The internet transport on libcurl. Each handle is an object of its own in
// one table; HTTP handles live in curl_transport.cpp, FTP handles in
// curl_ftp.cpp, and both read their bodies through CurlPull.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/internet.hpp"

namespace ostrivane::desktop {

struct CurlHandle {
    virtual ~CurlHandle() = default;
};

// A handle whose body can be read: an HTTP reply, a remote file.
struct CurlReadable : CurlHandle {
    virtual InternetRead Read(char* buffer, std::size_t size) = 0;
    virtual std::optional<std::int32_t> Available() = 0;
};

class CurlTransport final : public InternetTransport {
public:
    CurlTransport();
    ~CurlTransport() override;
    CurlTransport(const CurlTransport&) = delete;
    CurlTransport& operator=(const CurlTransport&) = delete;

    bool GetConnectedState() override;
    bool Autodial() override;
    bool AutodialHangup() override;
    std::optional<std::string> CanonicalizeUrl(std::string_view url) override;
    std::optional<UrlParts> CrackUrl(std::string_view url) override;
    InternetHandle OpenSession(std::string_view agent, std::int32_t accessType) override;
    InternetHandle OpenUrl(InternetHandle session, std::string_view url, std::uint32_t flags) override;
    std::optional<std::string> QueryStatusCode(InternetHandle request) override;
    std::optional<std::string> QueryContentLength(InternetHandle request) override;
    std::optional<std::int32_t> QueryDataAvailable(InternetHandle request) override;
    InternetHandle Connect(InternetHandle session, std::string_view host, std::uint16_t port, std::string_view user,
                           std::string_view password, std::int32_t service, std::uint32_t flags) override;
    InternetHandle OpenRequest(InternetHandle connection, std::string_view verb, std::string_view object,
                               std::string_view version, std::uint32_t flags) override;
    bool AddRequestHeaders(InternetHandle request, std::string_view headers, std::uint32_t modifiers) override;
    bool SendRequest(InternetHandle request, std::string_view body) override;
    InternetRead ReadFile(InternetHandle handle, char* buffer, std::size_t size) override;
    void CloseHandle(InternetHandle handle) override;
    bool FtpSetCurrentDirectory(InternetHandle connection, std::string_view directory) override;
    bool FtpCreateDirectory(InternetHandle connection, std::string_view directory) override;
    bool FtpDeleteFile(InternetHandle connection, std::string_view name) override;
    bool FtpPutFile(InternetHandle connection, std::string_view localFile, std::string_view remoteName,
                    std::uint32_t flags) override;
    InternetHandle FtpOpenFile(InternetHandle connection, std::string_view name, std::uint32_t access,
                               std::uint32_t flags) override;
    InternetHandle FtpFindFirstFile(InternetHandle connection, std::string_view name) override;
    std::uint32_t GetLastError() override { return lastError_; }
    std::string LastResponseInfo() override { return lastResponse_; }

private:
    // The FTP side of Connect (curl_ftp.cpp).
    InternetHandle ConnectFtp(InternetHandle session, std::string_view host, std::uint16_t port,
                              std::string_view user, std::string_view password, std::uint32_t flags);

    InternetHandle Add(std::unique_ptr<CurlHandle> handle);
    template <class T>
    T* Find(InternetHandle handle) {
        const auto it = handles_.find(handle);
        return it == handles_.end() ? nullptr : dynamic_cast<T*>(it->second.get());
    }

    std::map<InternetHandle, std::unique_ptr<CurlHandle>> handles_;
    InternetHandle nextHandle_ = 1;
    std::uint32_t lastError_ = 0;
    std::string lastResponse_;
};

}  // namespace ostrivane::desktop
