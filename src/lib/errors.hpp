// Run-time errors: the one exception type of the core, and the two ways of
// meeting it (let it travel, or skip the step that raised it).
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace ostrivane {

// Numbers of the run-time errors the system raises.
enum RuntimeErrorNumber : std::int32_t {
    kInvalidProcedureCall = 5,
    kOverflow = 6,
    kOutOfMemory = 7,
    kSubscriptOutOfRange = 9,
    kDivisionByZero = 11,
    kTypeMismatch = 13,
    kBadFileName = 52,
    kFileNotFound = 53,
    kFileAlreadyExists = 58,
    kDiskFull = 61,
    kPermissionDenied = 70,
    kPathFileAccessError = 75,
    kPathNotFound = 76,
    kInvalidPatternString = 93,
};

// Base of the library's own error numbers (application-defined errors).
inline constexpr std::int32_t kObjectErrorBase = static_cast<std::int32_t>(0x80040000u);

// The standard text of a run-time error number.
std::string RuntimeErrorText(std::int32_t number);

class RuntimeError : public std::runtime_error {
public:
    RuntimeError(std::int32_t number, std::string source, std::string description);
    explicit RuntimeError(std::int32_t number);

    std::int32_t number() const noexcept { return number_; }
    const std::string& source() const noexcept { return source_; }
    const std::string& description() const noexcept { return description_; }

private:
    std::int32_t number_;
    std::string source_;
    std::string description_;
};

[[noreturn]] void Raise(std::int32_t number);
[[noreturn]] void Raise(std::int32_t number, std::string source, std::string description);

// Runs one step of a "skip on failure" region: a run-time error ends the
// step and nothing else. Returns false when the step was cut short.
template <class Step>
bool SkipOnFailure(Step&& step) {
    try {
        step();
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

}  // namespace ostrivane
