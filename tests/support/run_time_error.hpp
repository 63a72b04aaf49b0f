// The number of the run-time error a piece of code raises, 0 if none.
#pragma once

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

}  // namespace ostrivane
