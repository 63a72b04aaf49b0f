#include "net/http_client.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "lib/errors.hpp"
#include "lib/file_test.hpp"
#include "lib/numbers.hpp"
#include "lib/strings.hpp"
#include "lib/window_helpers.hpp"
#include "net/client_errors.hpp"
#include "net/parse_url.hpp"

namespace ostrivane {

namespace {

constexpr char kSource[] = "Vexil.lib_clsHTTP";
constexpr char kBrowserAgent[] = "Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.0)";
constexpr char kGetAgent[] = "lib_clsHTTP";
constexpr std::uint32_t kRequestFlags =
    INTERNET_FLAG_RELOAD | INTERNET_FLAG_EXISTING_CONNECT | INTERNET_FLAG_NO_CACHE_WRITE;
constexpr std::size_t kReadSize = 4096;

using namespace client_errors;
constexpr std::int32_t kStatusError = kObjectErrorBase + 2000;

std::optional<double> NumericValue(const std::string& text) {
    try {
        return TextToNumber(text);
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

std::string Trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

lib_clsHTTP::lib_clsHTTP(InternetTransport& transport, Desktop& desktop, WindowSystem& windows)
    : transport_(transport), desktop_(desktop), windows_(windows) {
    connected_ = transport_.GetConnectedState();
}

lib_clsHTTP::~lib_clsHTTP() {
    for (std::FILE* file : files_) std::fclose(file);
    transport_.CloseHandle(urlHandle_);
    transport_.CloseHandle(session_);
    size_ = 0;
}

bool lib_clsHTTP::FileExists() const {
    std::string found;
    return lib_FileExists(destination_, found, true) && !found.empty();
}

void lib_clsHTTP::HttpURL(const std::string& strURL) {
    url_ = strURL;
    std::string head = url_.substr(0, 5);
    std::transform(head.begin(), head.end(), head.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    secure_ = head == "https";
}

bool lib_clsHTTP::IsConnected() { return transport_.GetConnectedState(); }

void lib_clsHTTP::DialDefaultNumber() {
    if (!transport_.GetConnectedState()) connected_ = transport_.Autodial();
}

void lib_clsHTTP::HangUp() { connected_ = transport_.AutodialHangup(); }

std::string lib_clsHTTP::HTTPStatusText(const std::string& status) {
    const std::optional<double> value = NumericValue(status);
    if (!value || *value < 100 || *value > 599 || *value != static_cast<double>(static_cast<int>(*value))) return {};
    switch (static_cast<int>(*value)) {
        case 101: return "Server has switched protocols in upgrade header.";
        case 204: return "No info to return.";
        case 300: return "Server couldn't decide what to return.";
        case 301: return "Object permanently moved";
        case 302: return "Object temporarily moved";
        case 303: return "Redirection with new access method.";
        case 304: return "If-modified-since was not modified.";
        case 305: return "Redirection to proxy, location header specifies proxy to use.";
        case 307: return "HTTP/1.1: keep same verb";
        case 400: return "Invalid syntax.";
        case 401: return "Access denied.";
        case 402: return "Payment required.";
        case 403: return "Request forbidden.";
        case 404: return "Object not found. Bad URL.";
        case 405: return "Method is not allowed.";
        case 406: return "No response acceptable to client found.";
        case 407: return "Proxy authentication required.";
        case 408: return "Server timed out waiting for request.";
        case 409: return "User should resubmit with more info.";
        case 410: return "The resource is no longer available.";
        case 411: return "The server refused to accept request without a length.";
        case 412: return "Precondition given in request failed.";
        case 413: return "Request entity was too large.";
        case 414: return "Request URI too long.";
        case 415: return "Unsupported media type.";
        case 500: return "Internal server error.";
        case 501: return "Required not supported.";
        case 502: return "Error response received from gateway.";
        case 503: return "Temporarily overloaded.";
        case 504: return "Timed out waiting for gateway.";
        case 505: return "HTTP version not supported.";
        default: return {};
    }
}

void lib_clsHTTP::ConnectToHTTPHost(std::int16_t pintRetrySecs, bool pblnTextExistsOnly) {
    try {
        Connect(pintRetrySecs, pblnTextExistsOnly);
    } catch (const RuntimeError& e) {
        std::string description = e.description();
        if (e.number() == kBadUrl) {
            description = BadUrlText(url_);
        } else if (e.number() == kUnknownError) {
            description = kUnknownErrorText;
        } else if (e.number() == kNoServer) {
            description = NoServerText(parts_.host);
        } else if (e.number() == kNoTransfer) {
            description = NoTransferText(parts_.host);
        }
        Raise(e.number(), e.source() + ":ConnectToHTTPHost()", description);
    }
}

void lib_clsHTTP::Connect(std::int16_t retrySecs, bool textExistsOnly) {
    if (Trimmed(url_).empty()) Raise(kBadUrl, kSource, "");
    const std::optional<UrlParts> parts = ParseURL(transport_, url_);
    if (!parts) Raise(kUnknownError, kSource, "");
    parts_ = *parts;
    if (parts_.host.empty()) Raise(kBadUrl, kSource, "");

    // An earlier connection's handles are not closed here; the transport
    // frees them when it ends.
    session_ = transport_.OpenSession(kBrowserAgent, INTERNET_OPEN_TYPE_PRECONFIG);
    // An existence test sees a redirect as an answer of its own.
    const std::uint32_t flags = kRequestFlags | (textExistsOnly ? INTERNET_FLAG_NO_AUTO_REDIRECT : 0u);
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        urlHandle_ = transport_.OpenUrl(session_, url_, flags);
        if (urlHandle_ != 0) break;
        lib_Sleep(desktop_, 1000, true);
        const auto passed = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
        if (passed.count() > retrySecs) break;
    }
    if (urlHandle_ == 0) Raise(kNoServer, kSource, "");

    const std::string status = transport_.QueryStatusCode(urlHandle_).value_or("");
    mblnPageFound = false;
    if (const std::optional<double> code = NumericValue(status)) {
        if (*code == 200) {
            mblnPageFound = true;
        } else if (!textExistsOnly) {
            const std::string text = HTTPStatusText(status);
            if (!text.empty()) Raise(kStatusError, kSource, text);
        }
    }
    // Never 0 after a connection.
    size_ = transport_.QueryDataAvailable(urlHandle_).value_or(0);
    if (size_ == 0) size_ = 1;
}

std::string lib_clsHTTP::HTTP_GET(const std::string& sFileName, const std::string& sUsername,
                                  const std::string& sPassword, std::int32_t& lBufferSize) {
    return Request("GET", kGetAgent, sFileName, "", sUsername, sPassword, lBufferSize);
}

std::string lib_clsHTTP::HTTP_POST(const std::string& sFileName, const std::string& strPostData,
                                   const std::string& sUsername, const std::string& sPassword,
                                   std::int32_t& lBufferSize) {
    return Request("POST", kBrowserAgent, sFileName, strPostData, sUsername, sPassword, lBufferSize);
}

std::string lib_clsHTTP::Request(const char* verb, const char* agent, const std::string& sFileName,
                                 const std::string& strPostData, const std::string& sUsername,
                                 const std::string& sPassword, std::int32_t& lBufferSize) {
    const bool post = std::string_view(verb) == "POST";
    std::string prefix = url_.substr(0, 7);
    std::transform(prefix.begin(), prefix.end(), prefix.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    // Only this prefix comes off: a secure URL keeps its scheme.
    const std::string host = prefix == "HTTP://" ? url_.substr(7) : url_;
    const std::uint16_t port = secure_ ? 443 : 80;
    if (lBufferSize == -1) lBufferSize = 4096;
    if (lBufferSize < 0) Raise(kInvalidProcedureCall);
    std::size_t bufferSize = static_cast<std::size_t>(lBufferSize);

    const InternetHandle session = transport_.OpenSession(agent, INTERNET_OPEN_TYPE_PRECONFIG);
    const InternetHandle connection =
        transport_.Connect(session, host, port, sUsername, sPassword, INTERNET_SERVICE_HTTP, 0);
    const InternetHandle request = transport_.OpenRequest(connection, verb, sFileName, "HTTP/1.0", kRequestFlags);
    // Closed in this order on the way out, also when a length beyond 32 bits raises.
    struct Closer {
        InternetTransport& t;
        InternetHandle handles[3];
        ~Closer() {
            for (const InternetHandle h : handles) t.CloseHandle(h);
        }
    } closer{transport_, {request, session, connection}};
    if (post) {
        transport_.AddRequestHeaders(request, "Content-Type: application/x-www-form-urlencoded\r\n",
                                     HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE);
    }
    std::string result;
    if (transport_.SendRequest(request, post ? std::string_view(strPostData) : std::string_view())) {
        std::int64_t expected = -1;
        // The answer has to fit the present buffer with its closing NUL.
        const std::optional<std::string> length = transport_.QueryContentLength(request);
        if (length && length->size() < bufferSize) {
            lBufferSize = TextToInt32(*length);
            expected = lBufferSize;
            bufferSize = static_cast<std::size_t>(std::max(lBufferSize, 0));
            result.reserve(std::min<std::size_t>(bufferSize, std::size_t{64} << 20));
        }
        // The reads land straight at the result's end; a huge announced
        // length is read in spans, not asked for in one piece.
        const std::size_t span = std::min<std::size_t>(bufferSize, std::size_t{1} << 20);
        std::int64_t total = 0;
        for (;;) {
            const std::size_t at = result.size();
            result.resize(at + span);
            const InternetRead read = transport_.ReadFile(request, result.data() + at, span);
            const std::size_t got = read.ok ? std::min(read.bytes, span) : 0;
            result.resize(at + got);
            total += static_cast<std::int64_t>(got);
            if (!read.ok || got == 0 || total == expected || result.size() >= MaxPageBytes) break;
        }
    }
    return result;
}

std::string lib_clsHTTP::WriteHTTPDataToString() {
    try {
        // The body gathers in blocks and is joined once at the end: a large
        // page never needs the double room of a string that outgrows itself.
        constexpr std::size_t kFirstBlock = 64 * 1024;
        constexpr std::size_t kBlock = 256 * 1024;
        std::vector<std::string> blocks;
        std::size_t total = 0;
        for (;;) {
            if (blocks.empty() || blocks.back().size() + kReadSize > blocks.back().capacity()) {
                blocks.emplace_back().reserve(blocks.size() == 1 ? kFirstBlock : kBlock);
            }
            std::string& block = blocks.back();
            const std::size_t at = block.size();
            block.resize(at + kReadSize);
            const InternetRead read = transport_.ReadFile(urlHandle_, block.data() + at, kReadSize);
            // A failed read is tried again; the transport ends a broken transfer as an end of data.
            const std::size_t got = read.ok ? std::min(read.bytes, kReadSize) : 0;
            block.resize(at + got);
            total += got;
            if ((read.ok && got == 0) || total >= MaxPageBytes) break;
        }
        if (blocks.size() == 1) return std::move(blocks.front());
        std::string page;
        page.reserve(total);
        for (std::string& block : blocks) {
            page += block;
            std::string().swap(block);
        }
        return page;
    } catch (const RuntimeError& e) {
        if (e.number() == kSilentEnd) return {};
        Raise(e.number(), e.source() + ":WriteHTTPDataToString()", e.description());
    }
}

void lib_clsHTTP::WriteHTTPDataToFile() {
    try {
        WriteToFile();
    } catch (const RuntimeError& e) {
        if (e.number() == kSilentEnd) return;
        Raise(e.number(), e.source() + ":WriteHTTPDataToFile()", e.description());
    }
}

std::string lib_clsHTTP::AskForDestination() {
    std::string file = "Please select a new name for the destination file.";
    const std::string initialDir = Latin1Name(std::filesystem::current_path());
    // The owner is the destination's file name read as a number.
    const WindowHandle owner = TextToInt32(lib_GetFileName(destination_, true));
    return lib_GetSaveFile(windows_, initialDir, "", "", owner, file, "");
}

void lib_clsHTTP::WriteToFile() {
    std::string found;
    if ((lib_FileExists(destination_, found, true) && !overwrite_) || prompt_) {
        destination_ = AskForDestination();
        if (destination_.empty()) Raise(kSilentEnd, kSource, "");
    }
    std::FILE* file = std::fopen(NativePath(destination_).c_str(), "w+b");
    if (file == nullptr) Raise(kSilentEnd, kSource, "");
    std::setvbuf(file, nullptr, _IONBF, 0);
    files_.push_back(file);
    // Each read's whole block is written, its unread tail as NULs, and the
    // closing empty read's block too.
    for (;;) {
        std::array<char, kReadSize> block{};
        const InternetRead read = transport_.ReadFile(urlHandle_, block.data(), block.size());
        std::fwrite(block.data(), 1, block.size(), file);
        if (read.ok && read.bytes == 0) break;
    }
}

}  // namespace ostrivane
