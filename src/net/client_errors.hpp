// The errors the HTTP and FTP clients have in common: their numbers on the
// object-error base and the words that go with them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "lib/errors.hpp"

namespace ostrivane::client_errors {

// An operation that ends without a word.
inline constexpr std::int32_t kSilentEnd = kObjectErrorBase + 100;
inline constexpr std::int32_t kBadUrl = kObjectErrorBase + 1000;
inline constexpr std::int32_t kUnknownError = kObjectErrorBase + 3000;
inline constexpr std::int32_t kNoServer = kObjectErrorBase + 4001;
inline constexpr std::int32_t kNoTransfer = kObjectErrorBase + 5000;

inline std::string BadUrlText(std::string_view url) {
    return "Bad URL. \r\n" + std::string(url) + "\r\nPlease verify the hyperlink and try again.";
}
inline constexpr char kUnknownErrorText[] = "An unknown error occurred.";
inline std::string NoServerText(std::string_view host) { return "Couldn't connect to server '" + std::string(host) + "'."; }
inline std::string NoTransferText(std::string_view host) {
    return "Cannot start file transfer from '" + std::string(host) + "'.";
}

}  // namespace ostrivane::client_errors
