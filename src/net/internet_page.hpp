// lib_GetInternetPage: one page fetched (or posted to) through the HTTP
// client, checked for its end, and made plain text, cut into tags or into
// the items of a scan array.
#pragma once

#include <memory>
#include <string>

#include "lib/scan_array.hpp"

namespace ostrivane {

class Desktop;
class InternetTransport;

// The caller's variables that the routine may change.
struct InternetPageRequest {
    std::string pstrPageURL{};
    std::string pstrPostData{};
    bool pblnCleanText = false;
    bool pblnStripTags = false;
    bool pblnAllowIncomplete = false;
    // Given: receives a new scan array with the page's parts.
    std::unique_ptr<lib_clsScanArray>* pobjScanArray = nullptr;
    // Given and not empty: the page, and no fetch. Given: receives the kept page.
    std::string* pvarPageText = nullptr;
    bool pblnTextExistsOnly = false;
    std::string pstrStartAt{};
};

// Raises 1000 on the object-error base for a post without a page or a page
// without a type extension, and for a page without "</html>" (unless
// incomplete pages are allowed); the client's errors pass on. Each error is
// reported silently and raised again under "Vexil.lib_GetInternetPage".
std::string lib_GetInternetPage(InternetTransport& transport, Desktop& desktop, std::string pstrURL,
                                InternetPageRequest& request);

// Step 2: "//" in front without any, "http:" in front without a scheme,
// and the fragment cut off.
std::string NormalisePageAddress(std::string url);

}  // namespace ostrivane
