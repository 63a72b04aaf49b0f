// lib_clsHTTP: the library's client for one web resource. It opens a URL,
// tells whether the page was found, and hands the body over as a string or
// into a file; HTTP_GET and HTTP_POST are one-shot requests of their own.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/internet.hpp"
#include "platform/window_system.hpp"

namespace ostrivane {

class Desktop;

class lib_clsHTTP {
public:
    // The save dialog of WriteHTTPDataToFile is asked through windows; the
    // waits between connection attempts let desktop handle its events.
    lib_clsHTTP(InternetTransport& transport, Desktop& desktop, WindowSystem& windows);
    ~lib_clsHTTP();
    lib_clsHTTP(const lib_clsHTTP&) = delete;
    lib_clsHTTP& operator=(const lib_clsHTTP&) = delete;

    // True when the last ConnectToHTTPHost got status 200.
    bool mblnPageFound = false;

    void DestinationFile(const std::string& strFilePath) { destination_ = strFilePath; }
    bool FileExists() const;
    void HttpURL(const std::string& strURL);
    void hwnd(std::int32_t SourcehWnd) { owner_ = SourcehWnd; }
    bool IsConnected();
    void OverwriteTarget(bool blnOverWrite) { overwrite_ = blnOverWrite; }
    void PromptWithCommonDialog(bool blnYesNo) { prompt_ = blnYesNo; }
    std::int32_t SizeOfFile() const { return size_; }
    const std::string& SpecifiedURL() const { return url_; }

    // Opens the URL, trying again each second until more than pintRetrySecs
    // whole seconds have passed. With pblnTextExistsOnly a redirect is not
    // followed and no status is an error.
    void ConnectToHTTPHost(std::int16_t pintRetrySecs, bool pblnTextExistsOnly);
    void DialDefaultNumber();
    // HttpURL holds the bare host here (an "http://" in front is taken off),
    // sFileName the path. lBufferSize -1 asks for 4096; it comes back as the
    // size used. "" when the request could not be sent.
    std::string HTTP_GET(const std::string& sFileName, const std::string& sUsername, const std::string& sPassword,
                         std::int32_t& lBufferSize);
    std::string HTTP_POST(const std::string& sFileName, const std::string& strPostData,
                          const std::string& sUsername, const std::string& sPassword, std::int32_t& lBufferSize);
    void HangUp();
    // The rest of the open URL's body, up to MaxPageBytes: a server that never
    // stops sending ends there, and the caller sees a page without its end.
    std::string WriteHTTPDataToString();
    static inline std::size_t MaxPageBytes = std::size_t{128} << 20;
    // The rest of the body into the destination file, in whole blocks of 4096.
    void WriteHTTPDataToFile();

private:
    static std::string HTTPStatusText(const std::string& status);
    std::string Request(const char* verb, const char* agent, const std::string& sFileName,
                        const std::string& strPostData, const std::string& sUsername, const std::string& sPassword,
                        std::int32_t& lBufferSize);
    void Connect(std::int16_t retrySecs, bool textExistsOnly);
    void WriteToFile();
    // "" when the user gave none.
    std::string AskForDestination();

    InternetTransport& transport_;
    Desktop& desktop_;
    WindowSystem& windows_;

    bool connected_ = false;  // written, never read
    bool overwrite_ = false;
    bool prompt_ = false;
    bool secure_ = false;
    // Every destination file opened stays open until the object ends.
    std::vector<std::FILE*> files_;
    InternetHandle session_ = 0;
    InternetHandle urlHandle_ = 0;
    std::int32_t owner_ = 0;  // stored, never read
    std::int32_t size_ = 0;
    std::string destination_;
    std::string url_;
    UrlParts parts_;
};

}  // namespace ostrivane
