// The numbers GetLastError of the transport gives, for HTTP and FTP alike.
#pragma once

#include <curl/curl.h>

#include <cstdint>

#include "platform/internet.hpp"

namespace ostrivane::desktop {

inline constexpr std::uint32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr std::uint32_t ERROR_INVALID_HANDLE = 6;
inline constexpr std::uint32_t ERROR_NO_MORE_FILES = 18;
inline constexpr std::uint32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr std::uint32_t ERROR_INTERNET_TIMEOUT = 12002;
inline constexpr std::uint32_t ERROR_INTERNET_INTERNAL_ERROR = 12004;
inline constexpr std::uint32_t ERROR_INTERNET_INVALID_URL = 12005;
inline constexpr std::uint32_t ERROR_INTERNET_NAME_NOT_RESOLVED = 12007;
inline constexpr std::uint32_t ERROR_INTERNET_LOGIN_FAILURE = 12015;
inline constexpr std::uint32_t ERROR_INTERNET_CANNOT_CONNECT = 12029;
inline constexpr std::uint32_t ERROR_INTERNET_CONNECTION_ABORTED = 12030;
inline constexpr std::uint32_t ERROR_FTP_TRANSFER_IN_PROGRESS = 12110;

// The number of a failed transfer; otherwise for a failure with none of its own.
inline std::uint32_t ErrorOfTransfer(CURLcode code, std::uint32_t otherwise) {
    switch (code) {
        case CURLE_COULDNT_RESOLVE_HOST: return ERROR_INTERNET_NAME_NOT_RESOLVED;
        case CURLE_COULDNT_CONNECT: return ERROR_INTERNET_CANNOT_CONNECT;
        case CURLE_OPERATION_TIMEDOUT: return ERROR_INTERNET_TIMEOUT;
        case CURLE_LOGIN_DENIED: return ERROR_INTERNET_LOGIN_FAILURE;
        case CURLE_URL_MALFORMAT:
        case CURLE_UNSUPPORTED_PROTOCOL: return ERROR_INTERNET_INVALID_URL;
        default: return otherwise;
    }
}

}  // namespace ostrivane::desktop
