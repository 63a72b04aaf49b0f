// The form model: controls as plain objects with the properties and events
// the application logic is written against. Property writes raise the events
// the logic relies on (a list's ListIndex fires Click, a text's Text fires
// Change, ...). A binding to a real toolkit watches PropertyChanged and feeds
// user actions back through the same setters and events.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "form/event.hpp"

namespace ostrivane::form {

class Form;

inline constexpr std::int32_t kWhite = 16777215;
inline constexpr std::int32_t kBlack = 0;

// "Invalid property value": a scroll bar value outside its range, a list
// index outside the list.
inline constexpr std::int32_t kInvalidPropertyValue = 380;

enum class Property {
    Text, Caption, Enabled, Visible, BackColor, ForeColor, ToolTipText, Selection, Value, Range,
    Items, ListIndex, Selected, Checked, Interval, TimerEnabled, Focus, Geometry, Picture, Address,
};

class Control {
public:
    Control(Form* owner, std::string name);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const std::string& Name() const { return name_; }
    Form* Owner() const { return owner_; }

    bool Enabled() const { return enabled_; }
    void SetEnabled(bool enabled);
    bool Visible() const { return visible_; }
    void SetVisible(bool visible);
    const std::string& ToolTipText() const { return toolTip_; }
    void SetToolTipText(std::string text);
    // Whether leaving another control for this one runs that control's Validate.
    bool CausesValidation = true;

    // Gives this control the focus through its form, validating the one left.
    bool SetFocus();

    // Place and size on the form, in twips (15 to a pixel).
    int Left = 0;
    int Top = 0;
    int Width = 0;
    int Height = 0;
    void Move(int left, int top, int width, int height);
    bool TabStop = true;

    Event<> GotFocus;
    Event<> LostFocus;
    Event<bool&> Validate;  // Cancel: keep the focus where it is
    // Tells a binding which property the logic changed.
    Event<Control&, Property> PropertyChanged;

protected:
    void Changed(Property p) { PropertyChanged.Raise(*this, p); }

private:
    Form* owner_;
    std::string name_;
    bool enabled_ = true;
    bool visible_ = true;
    std::string toolTip_;
};

class Label : public Control {
public:
    using Control::Control;
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);

private:
    std::string caption_;
};

// A picture drawn by the desktop from its name (a sign, an icon); none
// when the name is empty.
class PictureBox : public Control {
public:
    PictureBox(Form* owner, std::string name, std::string picture = {});
    const std::string& Picture() const { return picture_; }
    void SetPicture(std::string picture);

private:
    std::string picture_;
};

// A caption shown as a link. A click on it opens its address; the desktop
// does that by itself, no handler of the form takes part.
class HyperLinkLabel : public Control {
public:
    using Control::Control;
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);
    const std::string& Address() const { return address_; }
    void SetAddress(std::string address);

private:
    std::string caption_;
    std::string address_;
};

// A decorative etched line: horizontal when its Height is 0, else vertical.
class Line : public Control {
public:
    using Control::Control;
};

class TextBox : public Control {
public:
    using Control::Control;

    const std::string& Text() const { return text_; }
    // Raises Change when the text differs.
    void SetText(std::string text);
    int SelStart() const { return selStart_; }
    int SelLength() const { return selLength_; }
    void SetSelection(int start, int length);
    bool AllSelected() const;
    std::int32_t BackColor() const { return backColor_; }
    void SetBackColor(std::int32_t colour);
    std::int32_t ForeColor() const { return foreColor_; }
    void SetForeColor(std::int32_t colour);
    bool Locked = false;
    bool MultiLine = false;
    // Shown for each character instead of it; none: the text itself.
    char PasswordChar = '\0';
    std::vector<std::int32_t> TabStops;  // in dialog units; empty: the usual every 32

    // A typed character: the handler may change it, 0 drops it. Returns the
    // key that went through (0 if dropped); the text takes it at the caret.
    int TypeKey(int key);

    Event<> Change;
    Event<int&> KeyPress;
    Event<> DblClick;

private:
    std::string text_;
    int selStart_ = 0;
    int selLength_ = 0;
    std::int32_t backColor_ = kWhite;
    std::int32_t foreColor_ = kBlack;
};

class CommandButton : public Control {
public:
    using Control::Control;
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);
    // A press, the user's or the program's.
    void PerformClick() { Click.Raise(); }
    // Enter anywhere on the form presses the default button, Esc the
    // cancel button; the focus stays where it is, so no Validate runs.
    bool Default = false;
    bool Cancel = false;
    Event<> Click;

private:
    std::string caption_;
};

class CheckBox : public Control {
public:
    using Control::Control;
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);
    // 0 unchecked, 1 checked, 2 grey. Raises Click when the value changes.
    int Value() const { return value_; }
    void SetValue(int value);
    bool ThreeState = false;
    // The button going down on it; a three-state box cycles in this handler.
    Event<> MouseDown;
    Event<> Click;

private:
    std::string caption_;
    int value_ = 0;
};

class ListBox : public Control {
public:
    enum class Selection { Single, Extended };
    ListBox(Form* owner, std::string name, Selection mode = Selection::Single);

    Selection MultiSelect() const { return mode_; }
    int ListCount() const { return static_cast<int>(items_.size()); }
    // Item text; index -1 gives the empty text; Invalid property value outside the list.
    const std::string& List(int index) const;
    void SetList(int index, std::string text);
    void AddItem(std::string text, int index = -1);
    void RemoveItem(int index);
    void Clear();

    int ListIndex() const { return listIndex_; }
    // Fires Click, also when the index does not change. -1 deselects.
    void SetListIndex(int index);
    bool Selected(int index) const;
    void SetSelected(int index, bool selected);
    int SelCount() const;

    // The user's click on an item: single selection moves; extended
    // selection with no modifier selects only that item.
    void ClickItem(int index);

    Event<> Click;
    Event<> DblClick;

private:
    void CheckIndex(int index) const;
    struct Item {
        std::string text;
        bool selected = false;
    };
    Selection mode_;
    std::vector<Item> items_;
    int listIndex_ = -1;
};

class ScrollBar : public Control {
public:
    enum class Orientation { Horizontal, Vertical };
    ScrollBar(Form* owner, std::string name, Orientation orientation);

    Orientation GetOrientation() const { return orientation_; }
    int Min() const { return min_; }
    int Max() const { return max_; }
    // Moves the value into the new range without raising Change.
    void SetRange(int min, int max);
    int Value() const { return value_; }
    // Invalid property value outside Min..Max; raises Change when it moves.
    void SetValue(int value);
    int SmallChange = 1;
    int LargeChange = 10;

    Event<> Change;

private:
    Orientation orientation_;
    int min_ = 0;
    int max_ = 32767;
    int value_ = 0;
};

class MenuItem : public Control {
public:
    MenuItem(Form* owner, std::string name, std::string caption, std::string shortcut = {});
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);
    const std::string& Shortcut() const { return shortcut_; }
    bool Checked() const { return checked_; }
    void SetChecked(bool checked);
    bool IsSeparator() const { return caption_ == "-"; }
    void PerformClick() { Click.Raise(); }
    std::vector<MenuItem*> Items;  // sub-entries, in order
    Event<> Click;

private:
    std::string caption_;
    std::string shortcut_;
    bool checked_ = false;
};

// Holds Interval and Enabled; whoever runs the event loop ticks it.
class Timer : public Control {
public:
    Timer(Form* owner, std::string name, int intervalMs);
    int Interval() const { return interval_; }
    void SetInterval(int ms);
    bool TimerEnabled() const { return timerEnabled_; }
    void SetTimerEnabled(bool enabled);
    Event<> Tick;

private:
    int interval_;
    bool timerEnabled_ = false;
};

}  // namespace ostrivane::form
