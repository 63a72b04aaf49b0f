// The number of the run-time error a piece of code raises, 0 if none, and
// the whole error as "number source: description".
#pragma once

#include <string>

#include "lib/errors.hpp"

namespace ostrivane {

template <class F>
int ErrorOf(F&& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

// What FailureOf gives for an object error: the number above the base, then "source: description".
inline std::string ObjectFailure(std::int32_t number, const std::string& rest) {
    return std::to_string(kObjectErrorBase + number) + " " + rest;
}

template <class F>
std::string FailureOf(F&& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return std::to_string(e.number()) + " " + e.source() + ": " + e.description();
    }
    return "no error";
}

}  // namespace ostrivane
