// A transfer whose body the reader pulls: the easy handle runs in a multi
// handle only while the reader waits for bytes, and pauses when its window
// is full, so a page of any size costs the window and the reader's own copy.
#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <optional>
#include <string>

#include "platform/internet.hpp"

namespace ostrivane::desktop {

class CurlPull {
public:
    // Takes over the easy handle's write function (not its ownership).
    explicit CurlPull(CURL* easy, std::size_t window = 64 * 1024);
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
    CURLcode Result() const;
};

}  // namespace ostrivane::desktop
