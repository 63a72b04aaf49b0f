// The library's error report, its debug trace, and the traced frame that the
// file and path routines run in.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "lib/errors.hpp"

namespace ostrivane {

class Desktop;
class Dialogs;

// The library's switches for its host; all false, and this program never
// sets them. lib_TrapOff lets errors pass untouched (no report, no box);
// lib_TraceOn writes a trace line as an instrumented routine leaves;
// lib_ErrorDetailOn shows the whole report instead of a short notice.
extern bool lib_TrapOff;
extern bool lib_TraceOn;
extern bool lib_ErrorDetailOn;
// Depth of the instrumented routines now running.
extern std::int16_t lib_CallDepth;

// Where shown reports go: the library's box on desktop, and the plain box of
// dialogs (titled appTitle) when that fails. Without a desktop a shown report
// becomes a line on standard error.
void lib_AttachErrorBoxes(Desktop* desktop, Dialogs* dialogs, std::string_view appTitle);

enum class ErrorClass { None, Sql, App, Sys };
struct ErrorClassText {
    ErrorClass errorClass = ErrorClass::None;
    std::int32_t n = 0;  // the number less the object-error base
    std::string text;    // "(&H80040005)(SQL 5) ", "(53) ", or "" for 0
};
// Overflow (6) for a number above 262143, whose distance from the base does
// not fit 32 bits.
ErrorClassText ClassifyError(std::int32_t number);

// A moment as the locale writes its date and time.
std::string GeneralDateText(std::time_t when);

// Turns a trapped error into one text and, with show, into a box: a warning
// for the library's own numbers above base + 1000, a critical box otherwise.
// Without lib_ErrorDetailOn the box says only that an error occurred. An error
// on the way ends in the plain system box; nothing leaves this routine unless
// lib_TrapOff is set.
void lib_ErrorHandler(std::string_view source, std::int32_t number, std::string_view description, bool show,
                      std::string_view extra, std::int16_t seconds);

// Milliseconds since boot, wrapping at 32 bits.
std::int32_t lib_GetTickCount();
// Takes the lines of lib_DebugTrace; none restores standard error.
void lib_SetDebugSink(std::function<void(const std::string&)> sink);
// On leaving (entering false) writes ";(depth)elapsed;;;name", with
// lib_CallDepth + 1 semicolons before the name. Entering writes nothing.
void lib_DebugTrace(std::string_view name, std::int32_t startTicks, bool entering);

// The frame of an instrumented routine: raises lib_CallDepth for its life,
// takes the ticks when lib_TraceOn, and on the way out traces and lowers the
// depth. With the wait cursor it turns the hourglass on and gives back the
// state it found.
class TracedFrame {
public:
    enum Cursor : bool { KeepCursor = false, WaitCursor = true };
    TracedFrame(std::string_view name, Cursor cursor);
    ~TracedFrame();
    TracedFrame(const TracedFrame&) = delete;
    TracedFrame& operator=(const TracedFrame&) = delete;

private:
    std::string name_;
    std::int32_t startTicks_ = 0;
    bool cursor_;
    bool savedBusy_ = false;
};

// Runs body as a traced routine under source: a run-time error is reported
// silently with detail as the extra line, the frame is closed, and the same
// number and description are raised again with source. With lib_TrapOff the
// error leaves as it came.
template <class Body>
decltype(auto) lib_RunTraced(std::string_view source, std::string_view detail, Body&& body) {
    TracedFrame frame(source, TracedFrame::WaitCursor);
    if (lib_TrapOff) return std::forward<Body>(body)();
    try {
        return std::forward<Body>(body)();
    } catch (const RuntimeError& error) {
        lib_ErrorHandler(source, error.number(), error.description(), false, detail, 0);
        throw RuntimeError(error.number(), std::string(source), error.description());
    }
}

}  // namespace ostrivane
