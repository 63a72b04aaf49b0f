// A transfer whose body the reader pulls: the easy handle runs in a multi
// handle only while the reader waits for bytes, and pauses when its window
// is full, so a page of any size costs the window and the reader's own copy.
// The pull also sets a connect timeout and a low-speed limit on the handle
// (set other values after constructing it) and takes over the header
// function: an HTTP reply's head ends Start.
#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <string>
#include <vector>

#include "platform/internet.hpp"

namespace ostrivane::desktop {

class CurlPull {
public:
    // Takes over the easy handle's write function (not its ownership). With
    // followsRedirects the head of a redirect that will be followed does not
    // count as the reply's head.
    explicit CurlPull(CURL* easy, std::size_t window = 64 * 1024, bool followsRedirects = false);
    ~CurlPull();
    CurlPull(const CurlPull&) = delete;
    CurlPull& operator=(const CurlPull&) = delete;

    // Runs the transfer until the head of the reply is in or it has ended;
    // false when it ended before any reply (no server, refused login).
    bool Start();
    // Body bytes a Read would give without waiting.
    std::size_t Available() const;
    // Waits for body bytes; ok with 0 bytes once the transfer has ended, also
    // when it failed or the peer closed midway.
    InternetRead Read(char* buffer, std::size_t size);
    // The transfer's result once it has ended; CURLE_OK until then.
    CURLcode Result() const { return result_; }

private:
    static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self);
    // One round of the multi handle; with wait, first waits for the socket.
    void Drive(bool wait);
    std::size_t Buffered() const { return window_.size() - start_; }

    CURL* easy_;
    CURLM* multi_;
    std::size_t windowSize_;
    bool followsRedirects_;
    // Received, not yet read: window_[start_, end).
    std::vector<char> window_;
    std::size_t start_ = 0;
    // The reader's buffer while it waits; bytes go straight there.
    char* target_ = nullptr;
    std::size_t targetSize_ = 0;
    std::size_t targetFilled_ = 0;
    bool added_ = false;  // to the multi handle, at the first drive
    bool paused_ = false;
    bool headDone_ = false;
    bool bodySeen_ = false;
    bool done_ = false;
    CURLcode result_ = CURLE_OK;
    long status_ = 0;        // of the reply whose head is coming in
    bool location_ = false;  // that reply names a new location
};

}  // namespace ostrivane::desktop
