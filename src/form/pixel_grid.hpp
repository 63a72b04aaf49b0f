// Forms are drawn on a pixel grid; the model keeps twips.
#pragma once

#include "form/controls.hpp"

namespace ostrivane::form {

inline constexpr int kTwipsPerPixel = 15;

inline void Place(Control& c, int left, int top, int width, int height) {
    c.Move(left * kTwipsPerPixel, top * kTwipsPerPixel, width * kTwipsPerPixel, height * kTwipsPerPixel);
}

}  // namespace ostrivane::form
