#include "desktop/curl_transport.hpp"

#include <ifaddrs.h>
#include <net/if.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <mutex>
#include <vector>

#include "desktop/curl_pull.hpp"
#include "desktop/transport_errors.hpp"

namespace ostrivane::desktop {

namespace {

constexpr std::size_t kWindow = 64 * 1024;
constexpr long kMaxRedirects = 20;

std::uint32_t ErrorOf(CURLcode code) { return ErrorOfTransfer(code, ERROR_INTERNET_INTERNAL_ERROR); }

bool SameNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

struct Session : CurlHandle {
    std::string agent;
};

struct HttpConnection : CurlHandle {
    std::string agent, host, user, password;
    std::uint16_t port = 0;
};

// A request, from its first line to the end of its reply's body.
struct HttpRequest : CurlReadable {
    std::string agent, url, verb, user, password, body;
    std::vector<std::string> headerLines;
    bool http10 = false;
    bool follow = true;
    CURL* easy = nullptr;
    curl_slist* headers = nullptr;
    std::unique_ptr<CurlPull> pull;

    ~HttpRequest() override { Release(); }
    void Release() {
        pull.reset();  // leaves the multi handle before the easy handle goes
        if (easy != nullptr) curl_easy_cleanup(easy);
        if (headers != nullptr) curl_slist_free_all(headers);
        easy = nullptr;
        headers = nullptr;
    }
    InternetRead Read(char* buffer, std::size_t size) override {
        return pull ? pull->Read(buffer, size) : InternetRead{true, 0};
    }
    std::optional<std::int32_t> Available() override {
        if (!pull) return std::nullopt;
        return static_cast<std::int32_t>(std::min<std::size_t>(pull->Available(), INT32_MAX));
    }
    // Sends the request and takes the head of the final reply; the failure's
    // code when nothing answered.
    CURLcode Send() {
        Release();
        easy = curl_easy_init();
        if (easy == nullptr) return CURLE_OUT_OF_MEMORY;
        curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
        curl_easy_setopt(easy, CURLOPT_USERAGENT, agent.c_str());
        curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
        curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
        curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, follow ? 1L : 0L);
        curl_easy_setopt(easy, CURLOPT_MAXREDIRS, kMaxRedirects);
        if (http10) curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_0));
        if (!user.empty()) {
            curl_easy_setopt(easy, CURLOPT_USERNAME, user.c_str());
            curl_easy_setopt(easy, CURLOPT_PASSWORD, password.c_str());
        }
        if (verb == "GET") {
            curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);
        } else {
            if (verb == "POST" || !body.empty()) {
                curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
                curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body.data());
            }
            if (verb != "POST") curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, verb.c_str());
        }
        for (const std::string& line : headerLines) headers = curl_slist_append(headers, line.c_str());
        if (headers != nullptr) curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
        pull = std::make_unique<CurlPull>(easy, kWindow, follow);
        if (pull->Start()) return CURLE_OK;
        const CURLcode result = pull->Result();
        Release();
        return result == CURLE_OK ? CURLE_GOT_NOTHING : result;
    }
};

// Bytes that may not stand in a URL as they are, escaped up to the query or
// fragment, which stay as written.
std::string EscapeUnsafe(std::string_view url) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    const std::size_t end = std::min(url.find_first_of("?#"), url.size());
    for (std::size_t i = 0; i < url.size(); ++i) {
        const auto byte = static_cast<unsigned char>(url[i]);
        if (i < end && (byte <= 0x20 || byte >= 0x7F || byte == '"' || byte == '<' || byte == '>')) {
            out += '%';
            out += kHex[byte >> 4];
            out += kHex[byte & 15];
        } else {
            out += url[i];
        }
    }
    return out;
}

struct Url {
    CURLU* handle = curl_url();
    ~Url() { curl_url_cleanup(handle); }
    bool Set(std::string_view url) {
        const std::string text(url);
        return handle != nullptr &&
               curl_url_set(handle, CURLUPART_URL, text.c_str(), CURLU_NON_SUPPORT_SCHEME | CURLU_ALLOW_SPACE) ==
                   CURLUE_OK;
    }
    std::optional<std::string> Get(CURLUPart part, unsigned int flags = 0) const {
        char* text = nullptr;
        if (curl_url_get(handle, part, &text, flags) != CURLUE_OK) return std::nullopt;
        std::string value(text);
        curl_free(text);
        return value;
    }
};

}  // namespace

CurlTransport::CurlTransport() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

CurlTransport::~CurlTransport() = default;

bool CurlTransport::GetConnectedState() {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return false;
    bool online = false;
    for (const ifaddrs* it = list; it != nullptr && !online; it = it->ifa_next) {
        const bool usable = it->ifa_addr != nullptr && (it->ifa_flags & IFF_UP) && !(it->ifa_flags & IFF_LOOPBACK);
        online = usable && (it->ifa_addr->sa_family == AF_INET || it->ifa_addr->sa_family == AF_INET6);
    }
    freeifaddrs(list);
    return online;
}

// There is no dial-up here: the answer is whether the machine is online.
bool CurlTransport::Autodial() { return GetConnectedState(); }
bool CurlTransport::AutodialHangup() { return true; }

std::optional<std::string> CurlTransport::CanonicalizeUrl(std::string_view url) {
    Url parsed;
    if (!parsed.Set(EscapeUnsafe(url))) return std::nullopt;
    return parsed.Get(CURLUPART_URL);
}

std::optional<UrlParts> CurlTransport::CrackUrl(std::string_view url) {
    Url parsed;
    if (!parsed.Set(url)) return std::nullopt;
    UrlParts parts;
    parts.scheme = parsed.Get(CURLUPART_SCHEME).value_or("");
    parts.host = parsed.Get(CURLUPART_HOST).value_or("");
    parts.user = parsed.Get(CURLUPART_USER, CURLU_URLDECODE).value_or("");
    parts.password = parsed.Get(CURLUPART_PASSWORD, CURLU_URLDECODE).value_or("");
    parts.path = parsed.Get(CURLUPART_PATH, CURLU_URLDECODE).value_or("");
    if (const auto query = parsed.Get(CURLUPART_QUERY)) parts.extra = "?" + *query;
    if (const auto fragment = parsed.Get(CURLUPART_FRAGMENT)) parts.extra += "#" + *fragment;
    const std::string port = parsed.Get(CURLUPART_PORT, CURLU_DEFAULT_PORT).value_or("0");
    parts.port = static_cast<std::uint16_t>(std::stoul(port));
    return parts;
}

InternetHandle CurlTransport::OpenSession(std::string_view agent, std::int32_t) {
    auto session = std::make_unique<Session>();
    session->agent = agent;
    return Add(std::move(session));
}

InternetHandle CurlTransport::OpenUrl(InternetHandle session, std::string_view url, std::uint32_t flags) {
    const Session* owner = Find<Session>(session);
    if (owner == nullptr) {
        lastError_ = ERROR_INVALID_HANDLE;
        return 0;
    }
    auto request = std::make_unique<HttpRequest>();
    request->agent = owner->agent;
    request->url = CanonicalizeUrl(url).value_or(std::string(url));
    request->verb = "GET";
    request->follow = (flags & INTERNET_FLAG_NO_AUTO_REDIRECT) == 0;
    if (const CURLcode result = request->Send(); result != CURLE_OK) {
        lastError_ = ErrorOf(result);
        return 0;
    }
    return Add(std::move(request));
}

std::optional<std::string> CurlTransport::QueryStatusCode(InternetHandle request) {
    const HttpRequest* found = Find<HttpRequest>(request);
    long status = 0;
    if (found == nullptr || found->easy == nullptr ||
        curl_easy_getinfo(found->easy, CURLINFO_RESPONSE_CODE, &status) != CURLE_OK || status == 0)
        return std::nullopt;
    return std::to_string(status);
}

std::optional<std::string> CurlTransport::QueryContentLength(InternetHandle request) {
    const HttpRequest* found = Find<HttpRequest>(request);
    curl_off_t length = -1;
    if (found == nullptr || found->easy == nullptr ||
        curl_easy_getinfo(found->easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length) != CURLE_OK || length < 0)
        return std::nullopt;
    return std::to_string(length);
}

std::optional<std::int32_t> CurlTransport::QueryDataAvailable(InternetHandle request) {
    CurlReadable* found = Find<CurlReadable>(request);
    if (found == nullptr) return std::nullopt;
    return found->Available();
}

InternetHandle CurlTransport::Connect(InternetHandle session, std::string_view host, std::uint16_t port,
                                      std::string_view user, std::string_view password, std::int32_t service,
                                      std::uint32_t flags) {
    if (service == INTERNET_SERVICE_FTP) return ConnectFtp(session, host, port, user, password, flags);
    const Session* owner = Find<Session>(session);
    if (owner == nullptr || service != INTERNET_SERVICE_HTTP) {
        lastError_ = ERROR_INVALID_HANDLE;
        return 0;
    }
    auto connection = std::make_unique<HttpConnection>();
    connection->agent = owner->agent;
    connection->host = host;
    connection->port = port == INTERNET_INVALID_PORT_NUMBER ? 80 : port;
    connection->user = user;
    connection->password = password;
    return Add(std::move(connection));
}

InternetHandle CurlTransport::OpenRequest(InternetHandle connection, std::string_view verb, std::string_view object,
                                          std::string_view version, std::uint32_t flags) {
    const HttpConnection* owner = Find<HttpConnection>(connection);
    if (owner == nullptr) {
        lastError_ = ERROR_INVALID_HANDLE;
        return 0;
    }
    auto request = std::make_unique<HttpRequest>();
    request->agent = owner->agent;
    request->url = "http://" + owner->host + ":" + std::to_string(owner->port) +
                   (object.starts_with('/') ? "" : "/") + std::string(object);
    request->verb = verb.empty() ? "GET" : std::string(verb);
    request->user = owner->user;
    request->password = owner->password;
    request->http10 = version == "HTTP/1.0";
    request->follow = (flags & INTERNET_FLAG_NO_AUTO_REDIRECT) == 0;
    return Add(std::move(request));
}

bool CurlTransport::AddRequestHeaders(InternetHandle request, std::string_view headers, std::uint32_t modifiers) {
    HttpRequest* found = Find<HttpRequest>(request);
    if (found == nullptr) {
        lastError_ = ERROR_INVALID_HANDLE;
        return false;
    }
    while (!headers.empty()) {
        const std::size_t end = std::min(headers.find('\n'), headers.size());
        std::string_view line = headers.substr(0, end);
        headers.remove_prefix(std::min(end + 1, headers.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.find_first_not_of(' ') == std::string_view::npos) continue;
        const std::string_view name = line.substr(0, line.find(':'));
        const auto same = std::find_if(found->headerLines.begin(), found->headerLines.end(),
                                       [&](const std::string& h) { return SameNoCase(h.substr(0, h.find(':')), name); });
        if (same != found->headerLines.end() && (modifiers & HTTP_ADDREQ_FLAG_REPLACE) != 0) {
            *same = line;
        } else if (same == found->headerLines.end() && (modifiers & HTTP_ADDREQ_FLAG_ADD) != 0) {
            found->headerLines.emplace_back(line);
        } else {
            return false;
        }
    }
    return true;
}

bool CurlTransport::SendRequest(InternetHandle request, std::string_view body) {
    HttpRequest* found = Find<HttpRequest>(request);
    if (found == nullptr) {
        lastError_ = ERROR_INVALID_HANDLE;
        return false;
    }
    found->body = body;
    if (const CURLcode result = found->Send(); result != CURLE_OK) {
        lastError_ = ErrorOf(result);
        return false;
    }
    return true;
}

InternetRead CurlTransport::ReadFile(InternetHandle handle, char* buffer, std::size_t size) {
    CurlReadable* found = Find<CurlReadable>(handle);
    if (found == nullptr) {
        // Nothing to read ends at once, so that no reader waits on it.
        lastError_ = ERROR_INVALID_HANDLE;
        return {true, 0};
    }
    return found->Read(buffer, size);
}

void CurlTransport::CloseHandle(InternetHandle handle) { handles_.erase(handle); }

InternetHandle CurlTransport::Add(std::unique_ptr<CurlHandle> handle) {
    if (nextHandle_ == 0) ++nextHandle_;
    handles_.emplace(nextHandle_, std::move(handle));
    return nextHandle_++;
}

}  // namespace ostrivane::desktop
