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
