// What the editor asks of the marker windows on the screen.
#pragma once

#include <cstdint>

namespace ostrivane {

class Overlay {
public:
    virtual ~Overlay() = default;
    // Brings the two windows of one marker in line with the table.
    virtual void ShowMarker(int row) = 0;
    // Every marker when showing, then the main form to the front.
    virtual void ShowAllMarkers() = 0;
    // Alpha 0 on the horizontal, then the vertical line of a row (a flash).
    virtual void MakeMarkerInvisible(int row) = 0;
    virtual void DestroyMarkerWindows(int row) = 0;
    // The four arms of the placement cross, at size 0, of the class of the
    // colour and dotted state, each given the alpha.
    virtual void CreateAddLines(std::int32_t colour, std::int32_t dotted, std::uint8_t alpha) = 0;
    // The arms around the cursor; a step that fails is skipped.
    virtual void MoveAddLines(std::int32_t x, std::int32_t y, std::int16_t thickness) = 0;
    // The cross, if there is one.
    virtual void DestroyAddLines() = 0;
    virtual void DestroyAllMarkerWindows() = 0;
    // Gives back every window class registered during the run (at unload).
    virtual void UnregisterMarkerClasses() = 0;
};

}  // namespace ostrivane
