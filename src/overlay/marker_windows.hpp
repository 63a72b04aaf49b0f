// The markers on the screen: two line windows per marker, one window class
// per pair of colour and dotted state, and the four arms of the placement
// cross. Everything here follows the table of the main form it is attached to.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/desktop.hpp"
#include "platform/line_windows.hpp"
#include "platform/overlay.hpp"

namespace ostrivane {

class MainForm;

// The registered classes: rows 1..100, columns 1 colour, 2 dotted value as
// given, 3 background brush. Row 0 and column 0 are never used; any cell
// outside the table is Subscript out of range (9).
class MarkerClassTable {
public:
    static constexpr int kRows = 101;
    static constexpr int kColumns = 4;
    std::int32_t& operator()(int row, int column);
    std::int32_t operator()(int row, int column) const;

private:
    std::array<std::array<std::int32_t, kColumns>, kRows> cells_{};
};

class MarkerWindows final : public Overlay {
public:
    MarkerWindows(LineWindows& lines, Desktop& desktop);

    // The form whose table, screen metrics and Showing flag are followed.
    // Until it is attached every operation does nothing.
    void Attach(MainForm& form) { form_ = &form; }

    void ShowMarker(int row) override;
    void ShowAllMarkers() override;
    void MakeMarkerInvisible(int row) override;
    void DestroyMarkerWindows(int row) override;
    void DestroyAllMarkerWindows() override;
    void CreateAddLines(std::int32_t colour, std::int32_t dotted, std::uint8_t alpha) override;
    void MoveAddLines(std::int32_t x, std::int32_t y, std::int16_t thickness) override;
    void DestroyAddLines() override;
    void UnregisterMarkerClasses() override;

    // The class of a pair, registered on first use. The 101st pair raises
    // Subscript out of range after ClassCount was raised.
    std::int16_t GetMarkerClass(std::int32_t colour, std::int32_t dotted);
    // "Ostrvane" and the decimal index; cached for the indexes in use.
    const std::string& ClassName(std::int16_t index);

    MarkerClassTable MarkerClasses;
    std::int16_t ClassCount = 0;
    // Elements 1..4: the windows of the placement cross; element 1 is 0
    // while there is no cross. Element 0 is never used.
    std::array<WindowHandle, 5> AddLines{};

    LineWindows& lineWindows() { return lines_; }

private:
    // Platform calls on a handle of 0 would do nothing; they are not made.
    void Destroy(WindowHandle window);
    // HwndV of a row, or 0 while HwndH is 0 and HwndV is a stale handle.
    WindowHandle LiveHwndV(int row) const;

    LineWindows& lines_;
    Desktop& desktop_;
    MainForm* form_ = nullptr;
    // Names of the classes 0..100 (0: the name asked for when a lookup
    // failed), made once so the steady road of ShowMarker builds no text.
    std::array<std::string, MarkerClassTable::kRows> names_;
    std::string otherName_;
};

}  // namespace ostrivane
