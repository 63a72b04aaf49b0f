#include "net/update_check.hpp"

#include <fstream>

#include "dialogs/message_box.hpp"
#include "lib/error_handler.hpp"
#include "lib/errors.hpp"
#include "lib/strings.hpp"
#include "lib/text.hpp"
#include "net/internet_page.hpp"
#include "platform/dialogs.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

constexpr char kCrLf[] = "\r\n";
constexpr std::int16_t kLatestSeconds = 3;
constexpr std::int16_t kNewsSeconds = 5;
// Where the machine's identity is kept, the second for older systems.
constexpr const char* kMachineIdFiles[] = {"/etc/machine-id", "/var/lib/dbus/machine-id"};

std::string UpdateUrl(std::string_view host, std::string_view product, std::string_view version,
                      std::int32_t number) {
    return "http://" + std::string(host) + "/Downloads/GetVersion1.asp?ProdCode=" + std::string(product) +
           "&Version=" + std::string(version) + "&PcId=" + std::to_string(number);
}

std::string NewsText(std::string_view whatsNew) {
    std::string text = ReplaceAll(whatsNew, "<BR>", kCrLf);
    text = ReplaceAll(ReplaceAll(text, "<B>", ""), "</B>", "");
    return lib_HtmlToText(text, true, true, true, "    ", false, "");
}

void CheckForUpdates(InternetTransport& transport, Desktop& desktop, Dialogs& dialogs, std::string_view product,
                     const std::string& version, bool noConfirm, std::string_view host, bool confirm) {
    if (!noConfirm && confirm &&
        dialogs.MsgBox("Checking version number online. No personal information is transmitted.",
                       vbOKCancel | vbQuestion, kAppTitle) == vbCancel)
        return;
    const std::int32_t number = lib_GetVolumeSerial("/");
    InternetPageRequest request;
    request.pblnCleanText = true;
    const UpdateReply reply =
        ParseUpdateReply(lib_GetInternetPage(transport, desktop, UpdateUrl(host, product, version, number), request));
    if (reply.page.empty()) {
        dialogs.MsgBox("Sorry, there was an error checking version from the internet", vbOKOnly, kAppTitle);
        return;
    }
    if (version == reply.latest) {
        lib_ShowInfo(desktop, "You have the latest version", kLatestSeconds);
        return;
    }
    lib_ShowInfo(desktop,
                 "Version " + reply.latest + " is available" + kCrLf + kCrLf + "What's New:" + kCrLf +
                     NewsText(reply.whatsNew),
                 kNewsSeconds);
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

UpdateReply ParseUpdateReply(std::string page) {
    UpdateReply reply;
    if (const std::size_t body = FindNoCase(page, "<BODY>"); body != std::string::npos) page.erase(0, body + 6);
    if (const std::size_t end = FindNoCase(page, "</BODY>"); end != std::string::npos) {
        page.erase(end);
        const std::size_t br = FindNoCase(page, "<BR>");
        if (br == std::string::npos) Raise(kInvalidProcedureCall);  // the cut of a negative length
        reply.latest = page.substr(0, br);
        reply.whatsNew = page.substr(br + 4);
    }
    reply.page = std::move(page);
    return reply;
}

std::int32_t SerialOfMachineId(std::string_view machineId) {
    if (machineId.size() != 32) return 0;
    std::uint32_t folded = 0;
    for (std::size_t word = 0; word < 4; ++word) {
        std::uint32_t value = 0;
        for (const char c : machineId.substr(word * 8, 8)) {
            const int digit = HexDigit(c);
            if (digit < 0) return 0;
            value = value << 4 | static_cast<std::uint32_t>(digit);
        }
        folded ^= value;
    }
    const auto signedValue = static_cast<std::int32_t>(folded);
    if (signedValue == INT32_MIN) Raise(kOverflow);
    return signedValue < 0 ? -signedValue : signedValue;
}

std::int32_t lib_GetVolumeSerial(std::string_view) {
    for (const char* file : kMachineIdFiles) {
        std::ifstream in(file);
        std::string id(33, '\0');  // the identity and its line end at most
        if (!in.read(id.data(), static_cast<std::streamsize>(id.size())) && in.gcount() == 0) continue;
        id.resize(static_cast<std::size_t>(in.gcount()));
        return SerialOfMachineId(id.substr(0, id.find_last_not_of("\n") + 1));
    }
    return 0;
}

void lib_CheckOnlineForUpdates(InternetTransport& transport, Desktop& desktop, Dialogs& dialogs,
                               std::string_view pstrProdCode, const std::string& pvarVersion, bool pblnNoConfirm,
                               std::string_view pstrHost, bool pblnConfirm) {
    try {
        CheckForUpdates(transport, desktop, dialogs, pstrProdCode, pvarVersion, pblnNoConfirm, pstrHost, pblnConfirm);
    } catch (const RuntimeError& error) {
        if (lib_TrapOff) throw;
        lib_ErrorHandler("lib_CheckOnlineForUpdates", error.number(), error.description(), true, "", 0);
    }
}

}  // namespace ostrivane
