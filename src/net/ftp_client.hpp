// The library's FTP client: one file sent to a server, fetched from it or
// deleted there. Set the URL and the local path, connect, then call the
// operation. The transport does the talking; every decision is here.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "platform/internet.hpp"
#include "platform/window_system.hpp"

namespace ostrivane {

// The password of an anonymous login: an e-mail address, by custom.
inline constexpr std::string_view kAnonymousFtpPassword = "ostrivane@users.invalid";

class lib_clsFTP {
public:
    // The file dialogs, and the active window as their owner, come from windows.
    lib_clsFTP(InternetTransport& transport, WindowSystem& windows);
    ~lib_clsFTP();
    lib_clsFTP(const lib_clsFTP&) = delete;
    lib_clsFTP& operator=(const lib_clsFTP&) = delete;

    // Left to the caller; nothing here reads it.
    bool mblnDownloading = false;

    void AutoCreateRemoteDir(bool value) { autoCreateRemoteDir_ = value; }
    // The remote file is the destination path; its directories are entered
    // (and made, with AutoCreateRemoteDir) one at a time.
    void DeleteFileFromFTPServer();
    void UploadFileToFTPServer();
    void ConnectToFTPHost(std::string_view strUserName = "anonymous",
                          std::string_view strPassword = kAnonymousFtpPassword);
    // Fetches the URL's path into the destination file.
    void WriteFTPDataToFile();
    // Marks the object as an upload of that file; an empty path asks for one.
    void SourceFile(std::string_view pstrFile);
    void UseProxy(bool value) { useProxy_ = value; }
    void FtpURL(std::string_view strURL) { url_ = strURL; }
    void hwnd(WindowHandle SourcehWnd) { owner_ = SourcehWnd; }
    // The destination is there locally.
    bool FileExists() const;
    // Leaves the finder open, as it always has.
    bool FTPFileExists(std::string_view strFileName);
    void OverwriteTarget(bool blnOverWrite) { overwrite_ = blnOverWrite; }
    void DestinationFile(std::string_view strFilePath) { destination_ = strFilePath; }
    const std::string& SpecifiedURL() const { return url_; }
    void PromptWithCommonDialog(bool blnYesNo) { prompt_ = blnYesNo; }
    std::int32_t SizeOfFile() const { return size_; }
    // The flag as last set; the platform is not asked again.
    bool IsConnected() const { return connected_; }
    // Asks whether the machine is online; dials nothing.
    void DialDefaultNumber();
    void HangUp();

private:
    void MakeRemoteDir(std::string_view remotePath);
    // Pieces of text cut at separator (letters compared without case); an
    // empty text has none. GetToken counts from 1.
    static std::int32_t CountTokens(std::string_view text, std::string_view separator);
    static std::string GetToken(std::string_view text, std::string_view separator, std::int32_t index);
    std::string LastResponseInfo() { return transport_.LastResponseInfo(); }
    // Delete and upload share their shape; the call does the one or the other.
    template <class Call>
    void RemoteFileOperation(const char* source, Call&& call);
    // The save-file dialog as the library calls it: ownerText converted to a
    // number first, which an empty or non-numeric text cannot survive.
    std::string AskForFile(std::string_view ownerText, std::string_view fileText);
    void TakeActiveWindowAsOwner();
    void DownloadToFile();

    InternetTransport& transport_;
    WindowSystem& windows_;
    std::string url_;
    std::string destination_;
    bool connected_ = false;
    bool overwrite_ = false;
    std::FILE* file_ = nullptr;
    InternetHandle connection_ = 0;
    WindowHandle owner_ = 0;
    InternetHandle session_ = 0;
    InternetHandle remoteFile_ = 0;
    std::int32_t size_ = 0;
    bool prompt_ = false;
    UrlParts parts_;
    std::vector<std::string> collection_;  // made and released with the object; never used
    std::string source_;
    bool upload_ = false;
    bool useProxy_ = false;
    bool autoCreateRemoteDir_ = false;
};

}  // namespace ostrivane
