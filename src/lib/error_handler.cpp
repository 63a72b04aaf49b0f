#include "lib/error_handler.hpp"

#include <chrono>
#include <cstdio>
#include <algorithm>
#include <new>

#include "dialogs/message_box.hpp"
#include "lib/numbers.hpp"
#include "lib/text.hpp"
#include "lib/window_helpers.hpp"
#include "platform/dialogs.hpp"

namespace ostrivane {

bool lib_TrapOff = false;
bool lib_TraceOn = false;
bool lib_ErrorDetailOn = false;
std::int16_t lib_CallDepth = 0;

namespace {

constexpr char kLineEnd[] = "\r\n";
constexpr char kShortNotice[] = "The application has encountered an error";
constexpr char kFatalText[] = "Fatal Error: the system encountered an error within the error handler";
// The library's own numbers up to this one are its everyday failures: a
// critical box; above it a warning.
constexpr std::int32_t kPlainAppError = 1000;
constexpr std::int32_t kAppErrorLimit = 65535;

Desktop* boxDesktop = nullptr;
Dialogs* boxDialogs = nullptr;
std::string boxTitle;
std::function<void(const std::string&)> debugSink;

void WriteLine(const std::string& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
    std::fflush(stderr);
}

std::string HexText(std::int32_t value) {
    char buffer[9];
    std::snprintf(buffer, sizeof buffer, "%X", static_cast<unsigned>(static_cast<std::uint32_t>(value)));
    return buffer;
}

std::string NowText() { return GeneralDateText(std::time(nullptr)); }

void ShowReport(const ErrorClassText& classed, const std::string& text, std::int16_t seconds) {
    if (boxDesktop == nullptr) {
        WriteLine(text);
        return;
    }
    if (classed.errorClass == ErrorClass::App && classed.n > kPlainAppError) {
        lib_ShowWarning(*boxDesktop, text, seconds);
    } else {
        lib_ShowCritical(*boxDesktop, text, seconds);
    }
}

// The report failed on its way; a box that does not need the library's form.
void ShowFatal(std::int32_t number, const std::string& description) {
    MessageText = kFatalText;
    const std::string text = MessageText + kLineEnd + "(" + DecimalText(number) + ") " + description;
    try {
        if (boxDialogs != nullptr) {
            boxDialogs->MsgBox(text, vbCritical, boxTitle);
        } else {
            WriteLine(text);
        }
    } catch (const RuntimeError&) {
        // Errors are ignored from here on.
    }
}

}  // namespace

void lib_AttachErrorBoxes(Desktop* desktop, Dialogs* dialogs, std::string_view appTitle) {
    boxDesktop = desktop;
    boxDialogs = dialogs;
    boxTitle = std::string(appTitle);
}

ErrorClassText ClassifyError(std::int32_t number) {
    ErrorClassText result;
    if (number == 0) return result;
    result.n = Sub32(number, kObjectErrorBase);
    if (result.n < kPlainAppError) {
        result.errorClass = ErrorClass::Sql;
        result.text = "(&H" + HexText(number) + ")(SQL " + DecimalText(result.n) + ") ";
    } else if (result.n <= kAppErrorLimit) {
        result.errorClass = ErrorClass::App;
        result.text = "(&H" + HexText(number) + ")(AppDef " + DecimalText(result.n) + ") ";
    } else {
        result.errorClass = ErrorClass::Sys;
        result.text = "(" + DecimalText(number) + ") ";
    }
    return result;
}

std::string GeneralDateText(std::time_t when) {
    std::tm local{};
    const std::tm* converted = std::localtime(&when);
    if (converted != nullptr) local = *converted;
    char buffer[128];
    const std::size_t length = std::strftime(buffer, sizeof buffer, "%x %X", &local);
    return std::string(buffer, length);
}

void lib_ErrorHandler(std::string_view source, std::int32_t number, std::string_view description, bool show,
                      std::string_view extra, std::int16_t seconds) {
    const auto report = [&] {
        std::string text = NowText() + " An error has occurred in " + std::string(source) + kLineEnd + kLineEnd;
        const ErrorClassText classed = ClassifyError(number);
        text += classed.text;
        text += description;
        if (!Trim(extra).empty()) text += kLineEnd + std::string(extra);
        if (!show) return;
        if (!lib_ErrorDetailOn) text = NowText() + " " + kShortNotice;
        ShowReport(classed, text, seconds);
    };
    if (lib_TrapOff) {
        report();
        return;
    }
    try {
        report();
    } catch (const RuntimeError& error) {
        ShowFatal(error.number(), error.description());
    } catch (const std::bad_alloc&) {
        ShowFatal(kOutOfMemory, RuntimeErrorText(kOutOfMemory));
    }
}

std::int32_t lib_GetTickCount() {
    const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(sinceBoot).count();
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(ms));
}

void lib_SetDebugSink(std::function<void(const std::string&)> sink) { debugSink = std::move(sink); }

void lib_DebugTrace(std::string_view name, std::int32_t startTicks, bool entering) {
    if (entering) return;
    const auto elapsed = static_cast<std::int32_t>(static_cast<std::uint32_t>(lib_GetTickCount()) -
                                                   static_cast<std::uint32_t>(startTicks));
    const std::string line = ";(" + DecimalText(lib_CallDepth) + ")" + DecimalText(elapsed) +
                             std::string(static_cast<std::size_t>(std::max(0, lib_CallDepth + 1)), ';') +
                             std::string(name);
    if (debugSink) {
        debugSink(line);
    } else {
        WriteLine(line);
    }
}

TracedFrame::TracedFrame(std::string_view name, Cursor cursor) : name_(name), cursor_(cursor) {
    lib_CallDepth = static_cast<std::int16_t>(lib_CallDepth + 1);
    if (lib_TraceOn) startTicks_ = lib_GetTickCount();
    if (cursor_) {
        savedBusy_ = BusyState;
        lib_SetBusy(true);
    }
}

TracedFrame::~TracedFrame() {
    try {
        if (lib_TraceOn) lib_DebugTrace(name_, startTicks_, false);
        if (cursor_) lib_SetBusy(savedBusy_);
    } catch (...) {
        // The way out ignores errors.
    }
    lib_CallDepth = static_cast<std::int16_t>(lib_CallDepth - 1);
}

}  // namespace ostrivane
