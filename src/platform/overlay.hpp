// What the editor asks of the marker windows on the screen.
#pragma once

namespace ostrivane {

class Overlay {
public:
    virtual ~Overlay() = default;
    // Brings the two windows of one marker in line with the table.
    virtual void ShowMarker(int row) = 0;
    // Every marker when showing, then the main form to the front.
    virtual void ShowAllMarkers() = 0;
    virtual void DestroyMarkerWindows(int row) = 0;
    virtual void DestroyAllMarkerWindows() = 0;
    // Gives back every window class registered during the run (at unload).
    virtual void UnregisterMarkerClasses() = 0;
};

}  // namespace ostrivane
