#include "net/internet_page.hpp"

#include <vector>

#include "lib/error_handler.hpp"
#include "lib/errors.hpp"
#include "lib/line_parser.hpp"
#include "lib/strings.hpp"
#include "lib/text.hpp"
#include "lib/window_helpers.hpp"
#include "net/http_client.hpp"

namespace ostrivane {

namespace {

constexpr char kSource[] = "Vexil.lib_GetInternetPage";
constexpr char kCrLf[] = "\r\n";
constexpr std::int16_t kConnectRetrySecs = 90;
constexpr std::size_t kScanArrayParts = 100000;
constexpr std::int32_t kObjectNotSet = 91;

[[noreturn]] void RaisePageError(const char* description) {
    Raise(kObjectErrorBase + 1000, kSource, description);
}

bool Contains(std::string_view text, std::string_view what) { return text.find(what) != std::string_view::npos; }

// Appends the page, or checks the post that is to carry it.
std::string WithPage(std::string url, const InternetPageRequest& request) {
    if (!request.pstrPostData.empty()) {
        if (request.pstrPageURL.empty()) RaisePageError("PostData provided but no PageURL");
        if (!Contains(request.pstrPageURL, ".")) RaisePageError("PostData provided but PageURL has no type extension");
        return url;
    }
    return url + request.pstrPageURL;
}

// Every line end becomes CR LF, whichever way the server wrote it; a
// character 255 of the page goes the same way.
std::string WithCrLfLineEnds(std::string_view page) {
    const std::string marked = ReplaceAll(page, kCrLf, "\xff");
    return ReplaceAll(ReplaceAll(marked, "\n", kCrLf), "\xff", kCrLf);
}

std::string PlainText(std::string_view page) {
    std::string text = lib_HtmlToText(page, true, true, true, "    ", false, "");
    for (const char* comment : {"<!", "<-", "->"}) text = ReplaceAll(text, comment, "|");
    return text;
}

// Tags out, the text on either side of each trimmed and joined.
std::string WithoutTags(std::string page) {
    std::size_t from = 0;
    while (true) {
        const std::size_t open = page.find('<', from);
        if (open == std::string::npos) return page;
        const std::size_t close = page.find('>', open);
        const std::string left = Trim(std::string_view(page).substr(0, open));
        if (close == std::string::npos) return left;
        page = left + Trim(std::string_view(page).substr(close + 1));
        from = left.size();
    }
}

std::unique_ptr<lib_clsScanArray> PageParts(const std::string& page, bool stripTags) {
    std::vector<std::string> parts(kScanArrayParts + 1);
    LineParseOptions options;
    options.DropDelims = kCrLf;
    options.QuotePairs = "\"\"";
    options.KeepSplitPairs = "<>{}";
    options.DelimsUnused = options.DelimToPrevPart = options.KeepPairWhole = options.PairInsidePart = true;
    options.TrimParts = true;
    const std::int16_t count = lib_GetLineParts3(page, parts, options);
    if (stripTags) {
        for (std::int32_t i = 1; i <= count; ++i) {
            std::string& part = parts[static_cast<std::size_t>(i)];
            if (part.starts_with('<') && FindNoCase(part, "HREF=") == std::string::npos) part.clear();
        }
    }
    auto scan = std::make_unique<lib_clsScanArray>();
    scan->LoadArray(parts, count, true);
    return scan;
}

std::string Fetch(InternetTransport& transport, Desktop& desktop, const std::string& url,
                  InternetPageRequest& request) {
    WindowSystem* windows = lib_AttachedWindowSystem();
    if (windows == nullptr) Raise(kObjectNotSet);
    lib_clsHTTP http(transport, desktop, *windows);
    http.HttpURL(url);
    if (!http.IsConnected()) http.DialDefaultNumber();
    if (!request.pstrPostData.empty()) {
        std::int32_t bufferSize = -1;
        return http.HTTP_POST(request.pstrPageURL, request.pstrPostData, "", "", bufferSize);
    }
    http.ConnectToHTTPHost(kConnectRetrySecs, request.pblnTextExistsOnly);
    if (request.pblnTextExistsOnly) return http.mblnPageFound ? "True" : "False";
    return http.WriteHTTPDataToString();
}

std::string GetPage(InternetTransport& transport, Desktop& desktop, std::string url, InternetPageRequest& request) {
    std::string page;
    if (request.pvarPageText && !request.pvarPageText->empty()) {
        page = *request.pvarPageText;
    } else {
        url = WithPage(NormalisePageAddress(std::move(url)), request);
        if (request.pblnTextExistsOnly) {
            request.pstrPostData.clear();
            request.pblnCleanText = request.pblnStripTags = request.pblnAllowIncomplete = false;
        }
        page = Fetch(transport, desktop, url, request);
        if (request.pblnTextExistsOnly) return page;
        if (!request.pblnAllowIncomplete && FindNoCase(page, "</html>") == std::string::npos)
            RaisePageError("Internet page is incomplete");

        if (!request.pstrStartAt.empty()) {
            const std::size_t start = FindNoCase(page, request.pstrStartAt);
            if (start != std::string::npos) page.erase(0, start);
        }
        std::string kept = WithCrLfLineEnds(page);
        page = kept;
        if (request.pblnCleanText) {
            kept = PlainText(page);
            page = ReplaceAll(kept, kCrLf, "");
        }
        if (request.pvarPageText) *request.pvarPageText = kept;
    }

    if (request.pobjScanArray) {
        *request.pobjScanArray = PageParts(page, request.pblnStripTags);
        return page;
    }
    return request.pblnStripTags ? WithoutTags(page) : page;
}

}  // namespace

std::string NormalisePageAddress(std::string url) {
    if (!Contains(url, "//")) url = "//" + url;
    if (!Contains(url, "http:") && !Contains(url, "https:")) url = "http:" + url;
    return url.substr(0, url.find('#'));
}

std::string lib_GetInternetPage(InternetTransport& transport, Desktop& desktop, std::string pstrURL,
                                InternetPageRequest& request) {
    return lib_RunTraced(kSource, "", [&] { return GetPage(transport, desktop, std::move(pstrURL), request); });
}

}  // namespace ostrivane
