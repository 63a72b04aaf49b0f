// The online update check: one request to the maker's server with the
// product, its version and this machine's number, and the answer shown.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ostrivane {

class Desktop;
class Dialogs;
class InternetTransport;

// Asks the server at pstrHost and shows what it said; every error is
// reported through lib_ErrorHandler and ends the check.
void lib_CheckOnlineForUpdates(InternetTransport& transport, Desktop& desktop, Dialogs& dialogs,
                               std::string_view pstrProdCode, const std::string& pvarVersion, bool pblnNoConfirm,
                               std::string_view pstrHost, bool pblnConfirm);

// This machine's number for the server, never negative: the machine's
// identity stands for the volume here, so the path is not looked at.
// 0 when the machine has none.
std::int32_t lib_GetVolumeSerial(std::string_view pstrPath);
// The number of a machine identity text (32 hexadecimal digits): its four
// 32-bit words folded into one, read as signed, without its sign. 0 for any
// other text; Overflow (6) for the one value that has no positive twin.
std::int32_t SerialOfMachineId(std::string_view machineId);

// The latest version and the what's-new text of a reply; what is not in
// the reply stays empty. A body without "<BR>" is Invalid procedure call (5).
struct UpdateReply {
    std::string page, latest, whatsNew;
};
UpdateReply ParseUpdateReply(std::string page);

}  // namespace ostrivane
