#include "net/parse_url.hpp"

#include <string>

#include "lib/strings.hpp"

namespace ostrivane {

namespace {
// Each part has a buffer of 1024 characters.
constexpr std::size_t kPartBuffer = 1024;

std::string PartAsReturned(const std::string& part) { return lib_CutAtNull(part.substr(0, kPartBuffer)); }
}  // namespace

std::optional<UrlParts> ParseURL(InternetTransport& transport, std::string_view url) {
    const std::optional<std::string> canonical = transport.CanonicalizeUrl(url);
    if (!canonical || canonical->size() >= kPartBuffer) return std::nullopt;
    std::optional<UrlParts> parts = transport.CrackUrl(*canonical);
    if (!parts) return std::nullopt;
    for (std::string* part : {&parts->scheme, &parts->host, &parts->user, &parts->password, &parts->path,
                              &parts->extra})
        *part = PartAsReturned(*part);
    return parts;
}

}  // namespace ostrivane
