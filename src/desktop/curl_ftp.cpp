// The FTP side of the transport. A connection is one logged-in control
// connection, kept in a share of its own so that every transfer finds it
// again, a download pulled through the reader's own multi handle too. Curl keeps no
// working directory between transfers, so the connection keeps it, and every
// command names an absolute path. A command the server refuses leaves its
// reply for LastResponseInfo and ERROR_INTERNET_EXTENDED_ERROR as the error.
#include "desktop/curl_ftp.hpp"

#include <curl/curl.h>
#include <fnmatch.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <memory>
#include <string>

#include "desktop/curl_pull.hpp"
#include "desktop/curl_transport.hpp"
#include "desktop/transport_errors.hpp"
#include "lib/strings.hpp"

namespace ostrivane::desktop {

namespace {

constexpr std::uint32_t FTP_TRANSFER_TYPE_ASCII = 0x1;

// A dead server ends a call after these, never hangs it.
constexpr long kConnectSecs = 20;
constexpr long kReplySecs = 30;
constexpr long kStalledSecs = 30;
// A directory listing larger than this is cut off: the name is looked for in what came.
constexpr std::size_t kListingLimit = 8 * 1024 * 1024;

std::uint16_t servicePort = 21;

class FtpDownload;

struct FtpSession {
    CURL* easy = curl_easy_init();
    CURLSH* share = curl_share_init();
    std::string base;  // ftp://host:port
    std::string cwd = "/";
    // The server's last reply, as it sent it; its code, 0 until one came in the present call.
    std::string reply;
    bool replyDone = true;
    int code = 0;
    FtpDownload* busy = nullptr;  // the download that holds the easy handle
    std::string listing;

    FtpSession() = default;
    FtpSession(const FtpSession&) = delete;
    FtpSession& operator=(const FtpSession&) = delete;
    ~FtpSession() {
        curl_easy_cleanup(easy);
        curl_share_cleanup(share);
    }
    std::string LastReply() const {
        std::string text = reply;
        while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
        return text;
    }
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Curl hands each line of each reply over; it also makes up header lines of
// its own (a file's size and date), which are not the server's words.
std::size_t OnReply(char* data, std::size_t size, std::size_t count, void* user) {
    FtpSession& s = *static_cast<FtpSession*>(user);
    const std::size_t bytes = size * count;
    const std::string_view line(data, bytes);
    const bool numbered = line.size() >= 4 && IsDigit(line[0]) && IsDigit(line[1]) && IsDigit(line[2]);
    if (s.replyDone) {
        if (!numbered) return bytes;
        s.reply.clear();
        s.replyDone = false;
    }
    s.reply += line;
    if (numbered && line[3] == ' ' && line.substr(0, 3) == std::string_view(s.reply).substr(0, 3)) {
        s.replyDone = true;
        s.code = (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
    }
    return bytes;
}

std::size_t Discard(char*, std::size_t size, std::size_t count, void*) { return size * count; }

std::size_t OnListing(char* data, std::size_t size, std::size_t count, void* user) {
    std::string& listing = *static_cast<std::string*>(user);
    const std::size_t bytes = size * count;
    if (listing.size() + bytes > kListingLimit) return CURL_WRITEFUNC_ERROR;
    listing.append(data, bytes);
    return bytes;
}

void SetTimeouts(CURL* easy) {
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, kConnectSecs);
    curl_easy_setopt(easy, CURLOPT_SERVER_RESPONSE_TIMEOUT, kReplySecs);
    curl_easy_setopt(easy, CURLOPT_ACCEPTTIMEOUT_MS, kReplySecs * 1000);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, kStalledSecs);
}

// Every option one call sets goes back to its rest value here, so that no
// call inherits another's.
void Aim(FtpSession& s, const std::string& url) {
    CURL* e = s.easy;
    curl_easy_setopt(e, CURLOPT_URL, url.c_str());
    curl_easy_setopt(e, CURLOPT_NOBODY, 0L);
    curl_easy_setopt(e, CURLOPT_UPLOAD, 0L);
    curl_easy_setopt(e, CURLOPT_DIRLISTONLY, 0L);
    curl_easy_setopt(e, CURLOPT_QUOTE, nullptr);
    curl_easy_setopt(e, CURLOPT_TRANSFERTEXT, 0L);
    curl_easy_setopt(e, CURLOPT_READDATA, nullptr);
    curl_easy_setopt(e, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(-1));
    curl_easy_setopt(e, CURLOPT_WRITEFUNCTION, &Discard);
    curl_easy_setopt(e, CURLOPT_WRITEDATA, nullptr);
    curl_easy_setopt(e, CURLOPT_HEADERFUNCTION, &OnReply);
    curl_easy_setopt(e, CURLOPT_HEADERDATA, &s);
    SetTimeouts(e);
    s.code = 0;
}

// The name against the working directory, its "." and ".." resolved.
std::string Absolute(const std::string& cwd, std::string_view name) {
    const std::string joined = name.starts_with('/') ? std::string(name) : cwd + "/" + std::string(name);
    std::string path;
    for (std::size_t at = 0; at <= joined.size();) {
        std::size_t end = joined.find('/', at);
        if (end == std::string::npos) end = joined.size();
        const std::string_view piece = std::string_view(joined).substr(at, end - at);
        if (piece == "..") path.erase(std::min(path.size(), path.rfind('/')));
        else if (!piece.empty() && piece != ".") path += "/" + std::string(piece);
        at = end + 1;
    }
    return path.empty() ? "/" : path;
}

// "%2F" makes the path absolute; a directory ends in "/" (the root has it).
std::string PathUrl(const FtpSession& s, const std::string& path, bool directory) {
    std::string url = s.base + "/%2F";
    std::size_t at = 1;
    while (at < path.size()) {
        std::size_t end = path.find('/', at);
        if (end == std::string::npos) end = path.size();
        char* piece = curl_easy_escape(s.easy, path.data() + at, static_cast<int>(end - at));
        if (piece == nullptr) return std::string();
        url += piece;
        curl_free(piece);
        if (end < path.size()) url += '/';
        at = end + 1;
    }
    if (directory && path != "/") url += '/';
    return url;
}

// A line break in a name would end the command early and start another.
bool Sendable(std::string_view text) { return text.find_first_of("\r\n") == std::string_view::npos; }

// The error of a call that failed: the server's refusal when it gave one.
std::uint32_t ErrorOf(CURLcode result, const FtpSession& s) {
    if (s.code >= 400) return ERROR_INTERNET_EXTENDED_ERROR;
    return ErrorOfTransfer(result, ERROR_INTERNET_CONNECTION_ABORTED);
}

// One command on the control connection; a refusal does not close it.
CURLcode Command(FtpSession& s, const std::string& command) {
    Aim(s, s.base + "/");
    curl_slist* quote = curl_slist_append(nullptr, ("*" + command).c_str());
    curl_easy_setopt(s.easy, CURLOPT_NOBODY, 1L);
    curl_easy_setopt(s.easy, CURLOPT_QUOTE, quote);
    CURLcode result = quote == nullptr ? CURLE_OUT_OF_MEMORY : curl_easy_perform(s.easy);
    curl_easy_setopt(s.easy, CURLOPT_QUOTE, nullptr);
    curl_slist_free_all(quote);
    if (result == CURLE_OK && s.code >= 400) result = CURLE_QUOTE_ERROR;
    return result;
}

struct FtpConnection final : CurlHandle {
    explicit FtpConnection(std::shared_ptr<FtpSession> s) : session(std::move(s)) {}
    ~FtpConnection() override;
    std::shared_ptr<FtpSession> session;
};

// What a search found stays with the caller's name; the handle only says it was there.
struct FtpFinder final : CurlHandle {};

// A remote file read as it comes. The connection's easy handle is lent to
// the pull until the end of the data or the close, whichever comes first.
class FtpDownload final : public CurlReadable {
public:
    FtpDownload(std::shared_ptr<FtpSession> s, const std::string& url) : session_(std::move(s)) {
        Aim(*session_, url);
        pull_ = std::make_unique<CurlPull>(session_->easy);
        // The pull's own head detection is for HTTP; the FTP replies go here.
        curl_easy_setopt(session_->easy, CURLOPT_HEADERFUNCTION, &OnReply);
        curl_easy_setopt(session_->easy, CURLOPT_HEADERDATA, session_.get());
        SetTimeouts(session_->easy);
        session_->busy = this;
    }
    ~FtpDownload() override { Finish(); }
    FtpDownload(const FtpDownload&) = delete;
    FtpDownload& operator=(const FtpDownload&) = delete;

    // False, with the transfer ended, when no data came and the transfer failed.
    bool Start() {
        const bool replied = pull_->Start();
        if (replied && (pull_->Available() > 0 || (pull_->Result() == CURLE_OK && session_->code < 400))) return true;
        result_ = pull_->Result();
        Finish();
        return false;
    }
    CURLcode Result() const { return result_; }
    InternetRead Read(char* buffer, std::size_t size) override {
        if (!pull_) return {true, 0};
        const InternetRead read = pull_->Read(buffer, size);
        if (read.ok && read.bytes == 0 && size > 0) Finish();
        return read;
    }
    std::optional<std::int32_t> Available() override {
        if (!pull_) return 0;
        return static_cast<std::int32_t>(std::min<std::size_t>(pull_->Available(), INT32_MAX));
    }

    // Gives the easy handle back and lets go of the session: from here on
    // the handle reads as ended.
    void Finish() {
        if (pull_ && result_ == CURLE_OK) result_ = pull_->Result();
        pull_.reset();
        if (session_) session_->busy = nullptr;
        session_.reset();
    }

private:

    std::shared_ptr<FtpSession> session_;
    std::unique_ptr<CurlPull> pull_;
    CURLcode result_ = CURLE_OK;
};

// A file still open on the connection ends with it.
FtpConnection::~FtpConnection() {
    if (session->busy != nullptr) session->busy->Finish();
}

// The session of a connection that is free for a command; none sets the error.
FtpSession* SessionOf(FtpConnection* holder, std::uint32_t& error) {
    if (holder == nullptr) return error = ERROR_INVALID_HANDLE, nullptr;
    if (holder->session->busy) return error = ERROR_FTP_TRANSFER_IN_PROGRESS, nullptr;
    return holder->session.get();
}

// The outcome of a call for the caller: the reply always, the error on failure.
bool Settle(const FtpSession& s, CURLcode result, std::uint32_t& error, std::string& response) {
    response = s.LastReply();
    if (result != CURLE_OK) error = ErrorOf(result, s);
    return result == CURLE_OK;
}

}  // namespace

void SetFtpServicePort(std::uint16_t port) { servicePort = port; }

InternetHandle CurlTransport::ConnectFtp(InternetHandle, std::string_view host, std::uint16_t port,
                                         std::string_view user, std::string_view password, std::uint32_t flags) {
    auto s = std::make_shared<FtpSession>();
    if (s->easy == nullptr || s->share == nullptr || host.empty() || !Sendable(user) || !Sendable(password) ||
        host.find_first_of("/@?# \t\r\n") != std::string_view::npos) {
        lastError_ = ERROR_INVALID_PARAMETER;
        return 0;
    }
    curl_share_setopt(s->share, CURLSHOPT_SHARE, CURL_LOCK_DATA_CONNECT);
    const bool literal6 = host.find(':') != std::string_view::npos;
    s->base = "ftp://" + std::string(literal6 ? "[" : "") + std::string(host) + (literal6 ? "]" : "") + ":" +
              std::to_string(port == INTERNET_INVALID_PORT_NUMBER ? servicePort : port);
    CURL* e = s->easy;
    curl_easy_setopt(e, CURLOPT_SHARE, s->share);
    curl_easy_setopt(e, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(e, CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
    if (!user.empty()) {
        curl_easy_setopt(e, CURLOPT_USERNAME, std::string(user).c_str());
        curl_easy_setopt(e, CURLOPT_PASSWORD, std::string(password).c_str());
    }
    if ((flags & INTERNET_FLAG_PASSIVE) == 0) curl_easy_setopt(e, CURLOPT_FTPPORT, "-");
    // Logging in is a transfer of nothing from the login directory.
    Aim(*s, s->base + "/");
    curl_easy_setopt(e, CURLOPT_NOBODY, 1L);
    const CURLcode result = curl_easy_perform(e);
    lastResponse_ = s->LastReply();
    if (result != CURLE_OK) {
        lastError_ = ErrorOf(result, *s);
        return 0;
    }
    const char* entry = nullptr;
    if (curl_easy_getinfo(e, CURLINFO_FTP_ENTRY_PATH, &entry) == CURLE_OK && entry != nullptr && *entry == '/')
        s->cwd = entry;
    return Add(std::make_unique<FtpConnection>(std::move(s)));
}

bool CurlTransport::FtpSetCurrentDirectory(InternetHandle connection, std::string_view directory) {
    FtpSession* const session = SessionOf(Find<FtpConnection>(connection), lastError_);
    if (session == nullptr) return 0;
    FtpSession& s = *session;
    if (!Sendable(directory)) return lastError_ = ERROR_INVALID_PARAMETER, false;
    const std::string path = Absolute(s.cwd, directory);
    const CURLcode result = Command(s, "CWD " + path);
    if (result == CURLE_OK) s.cwd = path;
    return Settle(s, result, lastError_, lastResponse_);
}

bool CurlTransport::FtpCreateDirectory(InternetHandle connection, std::string_view directory) {
    FtpSession* const session = SessionOf(Find<FtpConnection>(connection), lastError_);
    if (session == nullptr) return 0;
    FtpSession& s = *session;
    if (!Sendable(directory)) return lastError_ = ERROR_INVALID_PARAMETER, false;
    const CURLcode result = Command(s, "MKD " + Absolute(s.cwd, directory));
    return Settle(s, result, lastError_, lastResponse_);
}

bool CurlTransport::FtpDeleteFile(InternetHandle connection, std::string_view name) {
    FtpSession* const session = SessionOf(Find<FtpConnection>(connection), lastError_);
    if (session == nullptr) return 0;
    FtpSession& s = *session;
    if (!Sendable(name)) return lastError_ = ERROR_INVALID_PARAMETER, false;
    const CURLcode result = Command(s, "DELE " + Absolute(s.cwd, name));
    return Settle(s, result, lastError_, lastResponse_);
}

bool CurlTransport::FtpPutFile(InternetHandle connection, std::string_view localFile, std::string_view remoteName,
                               std::uint32_t flags) {
    FtpSession* const session = SessionOf(Find<FtpConnection>(connection), lastError_);
    if (session == nullptr) return 0;
    FtpSession& s = *session;
    std::FILE* const file = std::fopen(NativePath(localFile).c_str(), "rb");
    if (file == nullptr) return lastError_ = ERROR_FILE_NOT_FOUND, false;
    Aim(s, PathUrl(s, Absolute(s.cwd, remoteName), false));
    curl_easy_setopt(s.easy, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(s.easy, CURLOPT_READDATA, file);
    curl_easy_setopt(s.easy, CURLOPT_TRANSFERTEXT, (flags & 0x3) == FTP_TRANSFER_TYPE_ASCII ? 1L : 0L);
    if (std::fseek(file, 0, SEEK_END) == 0) {
        const long size = std::ftell(file);
        if (size >= 0) curl_easy_setopt(s.easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(size));
        std::rewind(file);
    }
    const CURLcode result = curl_easy_perform(s.easy);
    curl_easy_setopt(s.easy, CURLOPT_READDATA, nullptr);
    std::fclose(file);
    return Settle(s, result, lastError_, lastResponse_);
}

InternetHandle CurlTransport::FtpOpenFile(InternetHandle connection, std::string_view name, std::uint32_t access,
                                          std::uint32_t flags) {
    FtpSession* const session = SessionOf(Find<FtpConnection>(connection), lastError_);
    if (session == nullptr) return 0;
    FtpSession& s = *session;
    // Files are read here, never written through a handle.
    if (access != GENERIC_READ || !Sendable(name)) return lastError_ = ERROR_INVALID_PARAMETER, 0;
    auto download = std::make_unique<FtpDownload>(Find<FtpConnection>(connection)->session, PathUrl(s, Absolute(s.cwd, name), false));
    curl_easy_setopt(s.easy, CURLOPT_TRANSFERTEXT, (flags & 0x3) == FTP_TRANSFER_TYPE_ASCII ? 1L : 0L);
    const bool started = download->Start();
    lastResponse_ = s.LastReply();
    if (!started) {
        lastError_ = ErrorOf(download->Result(), s);
        return 0;
    }
    return Add(std::move(download));
}

InternetHandle CurlTransport::FtpFindFirstFile(InternetHandle connection, std::string_view name) {
    FtpSession* const session = SessionOf(Find<FtpConnection>(connection), lastError_);
    if (session == nullptr) return 0;
    FtpSession& s = *session;
    if (!Sendable(name)) return lastError_ = ERROR_INVALID_PARAMETER, 0;
    // An empty name, or one ending in "/", lists the directory whole.
    const std::string path = Absolute(s.cwd, name);
    const bool whole = name.empty() || name.ends_with('/');
    const std::size_t slash = path.rfind('/');
    const std::string directory = whole ? path : path.substr(0, slash == 0 ? 1 : slash);
    const std::string pattern = whole ? "*" : path.substr(slash + 1);
    Aim(s, PathUrl(s, directory, true));
    s.listing.clear();
    curl_easy_setopt(s.easy, CURLOPT_DIRLISTONLY, 1L);
    curl_easy_setopt(s.easy, CURLOPT_WRITEFUNCTION, &OnListing);
    curl_easy_setopt(s.easy, CURLOPT_WRITEDATA, &s.listing);
    const CURLcode result = curl_easy_perform(s.easy);
    lastResponse_ = s.LastReply();
    if (result != CURLE_OK && result != CURLE_WRITE_ERROR) return lastError_ = ErrorOf(result, s), 0;
    for (std::size_t at = 0; at < s.listing.size();) {
        std::size_t end = s.listing.find('\n', at);
        if (end == std::string::npos) end = s.listing.size();
        std::string entry = s.listing.substr(at, end - at);
        at = end + 1;
        if (entry.ends_with('\r')) entry.pop_back();
        // Some servers answer with the path they were given in front of each name.
        if (const std::size_t cut = entry.rfind('/'); cut != std::string::npos) entry.erase(0, cut + 1);
        if (!entry.empty() && ::fnmatch(pattern.c_str(), entry.c_str(), 0) == 0)
            return Add(std::make_unique<FtpFinder>());
    }
    lastError_ = ERROR_NO_MORE_FILES;
    return 0;
}

}  // namespace ostrivane::desktop
