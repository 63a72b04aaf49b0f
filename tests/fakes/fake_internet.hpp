// A scripted internet transport: replies by URL, a number of refused
// connections before the first that works, and a log of the calls in order.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/internet.hpp"

namespace ostrivane::fakes {

struct FakeReply {
    std::optional<std::string> status = "200";
    std::string body;
    std::optional<std::string> contentLength;
    std::size_t chunk = 4096;  // the most one read gives
};

class FakeInternet : public InternetTransport {
public:
    bool online = true;
    bool canonicalizeFails = false;
    int refusals = 0;  // OpenUrl answers 0 this many times first
    bool sendFails = false;
    std::map<std::string, FakeReply> replies;  // by URL (OpenUrl) or by object (OpenRequest)
    FakeReply otherReply{"404", "", std::nullopt};
    std::vector<std::string> calls;
    std::string lastUrl, lastBody, lastHeaders;

    bool GetConnectedState() override { return Log("GetConnectedState"), online; }
    bool Autodial() override { return Log("Autodial"), online; }
    bool AutodialHangup() override { return Log("AutodialHangup"), true; }
    std::optional<std::string> CanonicalizeUrl(std::string_view url) override {
        Log("CanonicalizeUrl " + std::string(url));
        if (canonicalizeFails) return std::nullopt;
        return std::string(url);
    }
    // scheme://[user[:password]@]host[:port][/path][?extra]
    std::optional<UrlParts> CrackUrl(std::string_view url) override {
        Log("CrackUrl");
        UrlParts parts;
        const auto colon = url.find("://");
        if (colon == std::string_view::npos) return std::nullopt;
        parts.scheme = url.substr(0, colon);
        std::string_view rest = url.substr(colon + 3);
        const std::string_view authority = rest.substr(0, std::min(rest.find('/'), rest.find('?')));
        rest.remove_prefix(authority.size());
        std::string_view host = authority;
        if (const auto at = authority.rfind('@'); at != std::string_view::npos) {
            const std::string_view login = authority.substr(0, at);
            parts.user = login.substr(0, login.find(':'));
            if (login.find(':') != std::string_view::npos) parts.password = login.substr(login.find(':') + 1);
            host = authority.substr(at + 1);
        }
        if (const auto port = host.find(':'); port != std::string_view::npos) {
            parts.port = static_cast<std::uint16_t>(std::stoi(std::string(host.substr(port + 1))));
            host = host.substr(0, port);
        }
        parts.host = host;
        parts.path = rest.substr(0, rest.find('?'));
        if (rest.find('?') != std::string_view::npos) parts.extra = rest.substr(rest.find('?'));
        return parts;
    }
    InternetHandle OpenSession(std::string_view agent, std::int32_t access) override {
        Log("OpenSession " + std::string(agent) + " " + std::to_string(access));
        return Add(Open{});
    }
    InternetHandle OpenUrl(InternetHandle, std::string_view url, std::uint32_t flags) override {
        Log("OpenUrl " + std::string(url) + " " + Hex(flags));
        lastUrl = url;
        if (refusals > 0) return --refusals, 0;
        return Add(Open{Reply(lastUrl), 0});
    }
    std::optional<std::string> QueryStatusCode(InternetHandle h) override {
        Log("QueryStatusCode");
        return Find(h) ? Find(h)->reply.status : std::nullopt;
    }
    std::optional<std::string> QueryContentLength(InternetHandle h) override {
        Log("QueryContentLength");
        return Find(h) ? Find(h)->reply.contentLength : std::nullopt;
    }
    std::optional<std::int32_t> QueryDataAvailable(InternetHandle h) override {
        Log("QueryDataAvailable");
        if (!Find(h)) return std::nullopt;
        const Open& o = *Find(h);
        return static_cast<std::int32_t>(std::min(o.reply.chunk, o.reply.body.size() - o.read));
    }
    InternetHandle Connect(InternetHandle, std::string_view host, std::uint16_t port, std::string_view user,
                           std::string_view password, std::int32_t service, std::uint32_t flags) override {
        Log("Connect " + std::string(host) + " " + std::to_string(port) + " " + std::string(user) + " " +
            std::string(password) + " " + std::to_string(service) + " " + Hex(flags));
        return Add(Open{});
    }
    InternetHandle OpenRequest(InternetHandle, std::string_view verb, std::string_view object,
                               std::string_view version, std::uint32_t flags) override {
        Log("OpenRequest " + std::string(verb) + " " + std::string(object) + " " + std::string(version) + " " +
            Hex(flags));
        return Add(Open{Reply(std::string(object)), 0});
    }
    bool AddRequestHeaders(InternetHandle, std::string_view headers, std::uint32_t modifiers) override {
        Log("AddRequestHeaders " + Hex(modifiers));
        lastHeaders = headers;
        return true;
    }
    bool SendRequest(InternetHandle, std::string_view body) override {
        Log("SendRequest " + std::to_string(body.size()));
        lastBody = body;
        return !sendFails;
    }
    InternetRead ReadFile(InternetHandle h, char* buffer, std::size_t size) override {
        Open* o = Find(h);
        if (!o) return {true, 0};
        const std::size_t n = std::min({size, o->reply.chunk, o->reply.body.size() - o->read});
        if (n > 0) std::memcpy(buffer, o->reply.body.data() + o->read, n);
        o->read += n;
        return {true, n};
    }
    void CloseHandle(InternetHandle h) override {
        Log("CloseHandle " + std::to_string(h));
        open_.erase(h);
    }
    bool FtpSetCurrentDirectory(InternetHandle, std::string_view) override { return false; }
    bool FtpCreateDirectory(InternetHandle, std::string_view) override { return false; }
    bool FtpDeleteFile(InternetHandle, std::string_view) override { return false; }
    bool FtpPutFile(InternetHandle, std::string_view, std::string_view, std::uint32_t) override { return false; }
    InternetHandle FtpOpenFile(InternetHandle, std::string_view, std::uint32_t, std::uint32_t) override { return 0; }
    InternetHandle FtpFindFirstFile(InternetHandle, std::string_view) override { return 0; }
    std::uint32_t GetLastError() override { return 0; }
    std::string LastResponseInfo() override { return {}; }

    std::size_t OpenHandles() const { return open_.size(); }

protected:
    struct Open {
        FakeReply reply;
        std::size_t read = 0;
    };
    std::map<InternetHandle, Open> open_;
    InternetHandle next_ = 1;

    void Log(std::string call) { calls.push_back(std::move(call)); }
    static std::string Hex(std::uint32_t v) {
        char text[16];
        std::snprintf(text, sizeof text, "%08X", v);
        return text;
    }
    FakeReply Reply(const std::string& key) const {
        const auto it = replies.find(key);
        return it == replies.end() ? otherReply : it->second;
    }
    InternetHandle Add(Open o) {
        open_.emplace(next_, std::move(o));
        return next_++;
    }
    Open* Find(InternetHandle h) {
        const auto it = open_.find(h);
        return it == open_.end() ? nullptr : &it->second;
    }
};

}  // namespace ostrivane::fakes
