#include "desktop/curl_pull.hpp"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string_view>

namespace ostrivane::desktop {

namespace {
constexpr long kConnectTimeoutSecs = 30;
// A peer that sends nothing for a minute ends the transfer.
constexpr long kLowSpeedBytes = 1;
constexpr long kLowSpeedSecs = 60;
constexpr int kPollMs = 200;

bool StartsWithNoCase(std::string_view text, std::string_view head) {
    return text.size() >= head.size() && std::equal(head.begin(), head.end(), text.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
           });
}
}  // namespace

CurlPull::CurlPull(CURL* easy, std::size_t window, bool followsRedirects)
    : easy_(easy), multi_(curl_multi_init()), windowSize_(std::max<std::size_t>(window, 1)),
      followsRedirects_(followsRedirects) {
    window_.reserve(windowSize_);
    curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &CurlPull::OnBody);
    curl_easy_setopt(easy_, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(easy_, CURLOPT_HEADERFUNCTION, &CurlPull::OnHeader);
    curl_easy_setopt(easy_, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy_, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSecs);
    curl_easy_setopt(easy_, CURLOPT_LOW_SPEED_LIMIT, kLowSpeedBytes);
    curl_easy_setopt(easy_, CURLOPT_LOW_SPEED_TIME, kLowSpeedSecs);
}

CurlPull::~CurlPull() {
    if (added_) curl_multi_remove_handle(multi_, easy_);
    curl_multi_cleanup(multi_);
}

std::size_t CurlPull::OnBody(char* data, std::size_t size, std::size_t count, void* self) {
    CurlPull& pull = *static_cast<CurlPull*>(self);
    const std::size_t bytes = size * count;
    pull.bodySeen_ = true;
    // A chunk that does not fit waits inside curl until the reader has
    // emptied the window; an empty window takes any chunk.
    if (pull.Buffered() > 0 && pull.Buffered() + bytes > pull.windowSize_) {
        pull.paused_ = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    std::size_t used = 0;
    if (pull.target_ != nullptr && pull.Buffered() == 0) {
        used = std::min(bytes, pull.targetSize_ - pull.targetFilled_);
        std::memcpy(pull.target_ + pull.targetFilled_, data, used);
        pull.targetFilled_ += used;
    }
    if (used < bytes) {
        if (pull.start_ > 0 && pull.window_.size() + (bytes - used) > pull.window_.capacity()) {
            pull.window_.erase(pull.window_.begin(), pull.window_.begin() + static_cast<std::ptrdiff_t>(pull.start_));
            pull.start_ = 0;
        }
        pull.window_.insert(pull.window_.end(), data + used, data + bytes);
    }
    return bytes;
}

std::size_t CurlPull::OnHeader(char* data, std::size_t size, std::size_t count, void* self) {
    CurlPull& pull = *static_cast<CurlPull*>(self);
    const std::size_t bytes = size * count;
    const std::string_view line(data, bytes);
    if (line.starts_with("HTTP/")) {
        const std::size_t blank = line.find(' ');
        pull.status_ = 0;
        for (std::size_t i = blank == std::string_view::npos ? line.size() : blank + 1;
             i < line.size() && line[i] >= '0' && line[i] <= '9' && pull.status_ < 1000; ++i)
            pull.status_ = pull.status_ * 10 + (line[i] - '0');
        pull.location_ = false;
    } else if (line == "\r\n" || line == "\n") {
        // Interim replies and redirects on the way do not count.
        const bool redirect = pull.followsRedirects_ && pull.location_ && pull.status_ >= 300 && pull.status_ < 400;
        if (pull.status_ >= 200 && !redirect) pull.headDone_ = true;
    } else if (StartsWithNoCase(line, "location:")) {
        pull.location_ = line.substr(9).find_first_not_of(" \t\r\n") != std::string_view::npos;
    }
    return bytes;
}

void CurlPull::Drive(bool wait) {
    if (!added_) {
        curl_multi_add_handle(multi_, easy_);
        added_ = true;
    }
    if (wait) curl_multi_poll(multi_, nullptr, 0, kPollMs, nullptr);
    int running = 0;
    curl_multi_perform(multi_, &running);
    int left = 0;
    while (CURLMsg* message = curl_multi_info_read(multi_, &left)) {
        if (message->msg == CURLMSG_DONE && message->easy_handle == easy_) {
            done_ = true;
            result_ = message->data.result;
        }
    }
}

bool CurlPull::Start() {
    for (bool wait = false; !headDone_ && !bodySeen_ && !done_; wait = true) Drive(wait);
    return headDone_ || bodySeen_ || result_ == CURLE_OK;
}

std::size_t CurlPull::Available() const { return Buffered(); }

InternetRead CurlPull::Read(char* buffer, std::size_t size) {
    if (size == 0) return {true, 0};
    if (Buffered() == 0 && !done_) {
        target_ = buffer;
        targetSize_ = size;
        targetFilled_ = 0;
        if (paused_) {
            paused_ = false;
            curl_easy_pause(easy_, CURLPAUSE_CONT);
        }
        for (bool wait = false; targetFilled_ == 0 && Buffered() == 0 && !done_; wait = true) Drive(wait);
        target_ = nullptr;
        if (targetFilled_ > 0) return {true, targetFilled_};
    }
    const std::size_t bytes = std::min(size, Buffered());
    if (bytes > 0) std::memcpy(buffer, window_.data() + start_, bytes);
    start_ += bytes;
    if (start_ == window_.size()) {
        window_.clear();
        start_ = 0;
    }
    return {true, bytes};
}

}  // namespace ostrivane::desktop
