#include "net/ftp_client.hpp"

#include <filesystem>
#include <optional>
#include <system_error>

#include "lib/errors.hpp"
#include "lib/file_test.hpp"
#include "lib/numbers.hpp"
#include "lib/strings.hpp"
#include "lib/text.hpp"
#include "lib/window_helpers.hpp"
#include "net/client_errors.hpp"
#include "net/parse_url.hpp"

namespace ostrivane {

namespace {

constexpr std::string_view kAgent = "WinInet-FileTransferObjects";
constexpr std::uint32_t kTransferFlags = FTP_TRANSFER_TYPE_BINARY | INTERNET_FLAG_NO_CACHE_WRITE;
constexpr std::size_t kBlock = 4096;

using namespace client_errors;
constexpr std::int32_t kCommandFailed = kObjectErrorBase + 2215;
constexpr std::int32_t kDirectoryFailed = kObjectErrorBase + 9999;

constexpr const char* kConnectSource = "FTP::ConnectToFTPHost";
constexpr const char* kDownloadSource = "FTP::WriteFTPDataToFile";

}  // namespace

lib_clsFTP::lib_clsFTP(InternetTransport& transport, WindowSystem& windows) : transport_(transport), windows_(windows) {
    connected_ = transport_.GetConnectedState();
}

lib_clsFTP::~lib_clsFTP() {
    collection_.clear();
    transport_.CloseHandle(connection_);
    transport_.CloseHandle(session_);
    if (file_ != nullptr) {
        std::fflush(file_);
        std::fclose(file_);
    }
    size_ = 0;
}

void lib_clsFTP::ConnectToFTPHost(std::string_view strUserName, std::string_view strPassword) {
    const std::optional<UrlParts> parts = ParseURL(transport_, url_);
    if (!parts) Raise(kUnknownError, kConnectSource, kUnknownErrorText);
    parts_ = *parts;
    if (parts_.host.empty())
        Raise(kBadUrl, kConnectSource, BadUrlText(url_));
    session_ = transport_.OpenSession(kAgent, useProxy_ ? INTERNET_OPEN_TYPE_PROXY : INTERNET_OPEN_TYPE_PRECONFIG);
    // The port of the URL is not passed on: the service's own port is used.
    connection_ = transport_.Connect(session_, parts_.host, INTERNET_INVALID_PORT_NUMBER, strUserName, strPassword,
                                     INTERNET_SERVICE_FTP, INTERNET_FLAG_PASSIVE);
    if (connection_ == 0) Raise(kNoServer, kConnectSource, NoServerText(parts_.host));
}

std::int32_t lib_clsFTP::CountTokens(std::string_view text, std::string_view separator) {
    if (text.empty()) return 0;
    if (separator.empty()) return 1;
    std::int32_t count = 1;
    for (std::size_t at = FindNoCase(text, separator); at != std::string_view::npos;
         at = FindNoCase(text, separator, at + separator.size()))
        ++count;
    return count;
}

std::string lib_clsFTP::GetToken(std::string_view text, std::string_view separator, std::int32_t index) {
    if (index < 1 || index > CountTokens(text, separator)) return std::string();
    if (separator.empty()) return std::string(text);
    std::size_t begin = 0;
    for (std::int32_t i = 1; i < index; ++i) begin = FindNoCase(text, separator, begin) + separator.size();
    const std::size_t end = FindNoCase(text, separator, begin);
    return std::string(text.substr(begin, end == std::string_view::npos ? std::string_view::npos : end - begin));
}

void lib_clsFTP::MakeRemoteDir(std::string_view remotePath) {
    const std::int32_t pieces = CountTokens(remotePath, "/");
    for (std::int32_t i = 1; i < pieces; ++i) {
        std::string directory = GetToken(remotePath, "/", i);
        if (directory.empty()) directory = "/";
        if (transport_.FtpSetCurrentDirectory(connection_, directory)) continue;
        // Only a refusal by the server counts; anything else is passed over.
        if (transport_.GetLastError() != ERROR_INTERNET_EXTENDED_ERROR) continue;
        if (!autoCreateRemoteDir_) Raise(kDirectoryFailed, "FTP", LastResponseInfo());
        transport_.FtpCreateDirectory(connection_, directory);
        transport_.FtpSetCurrentDirectory(connection_, directory);
    }
}

template <class Call>
void lib_clsFTP::RemoteFileOperation(const char* source, Call&& call) {
    try {
        MakeRemoteDir(destination_);
        const std::size_t slash = destination_.rfind('/');
        const std::string name = slash == std::string::npos ? destination_ : destination_.substr(slash + 1);
        if (!call(name)) Raise(kCommandFailed);
    } catch (const RuntimeError& e) {
        if (e.number() == kCommandFailed) Raise(kCommandFailed, source, LastResponseInfo());
        Raise(e.number(), source, e.description());
    }
}

void lib_clsFTP::DeleteFileFromFTPServer() {
    RemoteFileOperation("FTP::DeleteFileFromFTPServer",
                        [&](const std::string& name) { return transport_.FtpDeleteFile(connection_, name); });
}

void lib_clsFTP::UploadFileToFTPServer() {
    RemoteFileOperation("FTP::UploadFileToFTPServer", [&](const std::string& name) {
        return transport_.FtpPutFile(connection_, source_, name, kTransferFlags);
    });
}

void lib_clsFTP::TakeActiveWindowAsOwner() {
    if (owner_ == 0) owner_ = windows_.GetForegroundWindow();
}

std::string lib_clsFTP::AskForFile(std::string_view ownerText, std::string_view fileText) {
    const WindowHandle ownerValue = TextToInt32(ownerText);
    std::string file(fileText);
    std::error_code ec;
    const std::string here = Latin1Name(std::filesystem::current_path(ec));
    return lib_GetSaveFile(windows_, here, "", "", ownerValue, file, "");
}

void lib_clsFTP::SourceFile(std::string_view pstrFile) {
    std::string path(pstrFile);
    if (path.empty()) {
        TakeActiveWindowAsOwner();
        path = AskForFile("", "Please select the file to upload.");
        if (path.empty()) return;
    }
    source_ = path;
    upload_ = true;
    std::error_code ec;
    const std::uintmax_t length = std::filesystem::file_size(NativePath(source_), ec);
    if (ec) Raise(kFileNotFound);
    size_ = CheckedInt32(static_cast<std::int64_t>(length));
}

bool lib_clsFTP::FileExists() const {
    std::string found;
    return lib_FileExists(destination_, found, true) && !found.empty();
}

bool lib_clsFTP::FTPFileExists(std::string_view strFileName) {
    return transport_.FtpFindFirstFile(connection_, strFileName) != 0;
}

void lib_clsFTP::DialDefaultNumber() { connected_ = transport_.GetConnectedState(); }

void lib_clsFTP::HangUp() { connected_ = transport_.AutodialHangup(); }

void lib_clsFTP::WriteFTPDataToFile() {
    if (upload_) Raise(kNoTransfer, kDownloadSource, "Wrong transfer method selected.");
    try {
        DownloadToFile();
    } catch (const RuntimeError& e) {
        if (e.number() == kSilentEnd) return;
        if (e.number() == kNoTransfer) throw;
        Raise(e.number(), kDownloadSource, e.description());
    }
}

void lib_clsFTP::DownloadToFile() {
    if ((FileExists() && !overwrite_) || prompt_) {
        TakeActiveWindowAsOwner();
        if (destination_.empty())
            destination_ = AskForFile(lib_GetFileName(destination_, true),
                                      "Please select a new name for the destination file.");
    }
    if (destination_.empty()) Raise(kSilentEnd);
    remoteFile_ = transport_.FtpOpenFile(connection_, parts_.path, GENERIC_READ, kTransferFlags);
    if (remoteFile_ == 0)
        Raise(kNoTransfer, kConnectSource, NoTransferText(parts_.host));
    if (const std::optional<std::int32_t> available = transport_.QueryDataAvailable(remoteFile_)) size_ = *available;
    if (size_ == 0) size_ = 1;
    if (file_ != nullptr) std::fclose(file_);
    file_ = std::fopen(NativePath(destination_).c_str(), "w+b");
    if (file_ == nullptr) Raise(kSilentEnd);
    char buffer[kBlock];
    for (;;) {
        const InternetRead read = transport_.ReadFile(remoteFile_, buffer, sizeof buffer);
        if (!read.ok) continue;
        if (read.bytes == 0) break;
        if (std::fwrite(buffer, 1, read.bytes, file_) != read.bytes) Raise(kDiskFull);
    }
    std::fclose(file_);
    file_ = nullptr;
}

}  // namespace ostrivane
