#include "form/controls.hpp"

#include <algorithm>

#include "form/form.hpp"
#include "lib/errors.hpp"

namespace ostrivane::form {

namespace {
[[noreturn]] void InvalidPropertyValue() { Raise(kInvalidPropertyValue, "Ostrivane", "Invalid property value"); }
}  // namespace

Control::Control(Form* owner, std::string name) : owner_(owner), name_(std::move(name)) {
    if (owner_) owner_->Register(*this);
}

void Control::SetEnabled(bool enabled) {
    if (enabled_ == enabled) return;
    enabled_ = enabled;
    Changed(Property::Enabled);
}

void Control::SetVisible(bool visible) {
    if (visible_ == visible) return;
    visible_ = visible;
    Changed(Property::Visible);
}

void Control::SetToolTipText(std::string text) {
    toolTip_ = std::move(text);
    Changed(Property::ToolTipText);
}

void Control::Move(int left, int top, int width, int height) {
    Left = left;
    Top = top;
    Width = width;
    Height = height;
    Changed(Property::Geometry);
}

PictureBox::PictureBox(Form* owner, std::string name, std::string picture)
    : Control(owner, std::move(name)), picture_(std::move(picture)) {}

void PictureBox::SetPicture(std::string picture) {
    picture_ = std::move(picture);
    Changed(Property::Picture);
}

void HyperLinkLabel::SetCaption(std::string caption) {
    caption_ = std::move(caption);
    Changed(Property::Caption);
}

void HyperLinkLabel::SetAddress(std::string address) {
    address_ = std::move(address);
    Changed(Property::Address);
}

bool Control::SetFocus() { return owner_ ? owner_->SetFocusTo(*this) : false; }

void Label::SetCaption(std::string caption) {
    caption_ = std::move(caption);
    Changed(Property::Caption);
}

void TextBox::SetText(std::string text) {
    if (text == text_) return;
    text_ = std::move(text);
    selStart_ = std::min(selStart_, static_cast<int>(text_.size()));
    selLength_ = 0;
    Changed(Property::Text);
    Change.Raise();
}

void TextBox::SetSelection(int start, int length) {
    const int size = static_cast<int>(text_.size());
    selStart_ = std::clamp(start, 0, size);
    selLength_ = std::clamp(length, 0, size - selStart_);
    Changed(Property::Selection);
}

bool TextBox::AllSelected() const { return selStart_ == 0 && selLength_ == static_cast<int>(text_.size()); }

void TextBox::SetBackColor(std::int32_t colour) {
    backColor_ = colour;
    Changed(Property::BackColor);
}

void TextBox::SetForeColor(std::int32_t colour) {
    foreColor_ = colour;
    Changed(Property::ForeColor);
}

int TextBox::TypeKey(int key) {
    KeyPress.Raise(key);
    if (key == 0 || Locked) return key;
    if (key == 8) {  // backspace
        if (selLength_ > 0) {
            const int at = selStart_;
            SetText(text_.substr(0, static_cast<std::size_t>(at)) + text_.substr(static_cast<std::size_t>(at + selLength_)));
            selStart_ = at;
        } else if (selStart_ > 0) {
            const int at = selStart_ - 1;
            SetText(text_.substr(0, static_cast<std::size_t>(at)) + text_.substr(static_cast<std::size_t>(at + 1)));
            selStart_ = at;
        }
        return key;
    }
    if (key < 32 || key > 255) return key;  // clipboard and other control keys change no text here
    const int at = selStart_;
    std::string next = text_.substr(0, static_cast<std::size_t>(at));
    next += static_cast<char>(key);
    next += text_.substr(static_cast<std::size_t>(at + selLength_));
    SetText(std::move(next));
    selStart_ = at + 1;
    selLength_ = 0;
    return key;
}

void CommandButton::SetCaption(std::string caption) {
    caption_ = std::move(caption);
    Changed(Property::Caption);
}

void CheckBox::SetCaption(std::string caption) {
    caption_ = std::move(caption);
    Changed(Property::Caption);
}

void CheckBox::SetValue(int value) {
    if (value < 0 || value > 2) InvalidPropertyValue();
    if (value == value_) return;
    value_ = value;
    Changed(Property::Value);
    Click.Raise();
}

ListBox::ListBox(Form* owner, std::string name, Selection mode) : Control(owner, std::move(name)), mode_(mode) {}

void ListBox::CheckIndex(int index) const {
    if (index < 0 || index >= ListCount()) InvalidPropertyValue();
}

const std::string& ListBox::List(int index) const {
    static const std::string kNoItem;
    if (index == -1) return kNoItem;  // the text of "no item" is empty, as the toolkit gives it
    CheckIndex(index);
    return items_[static_cast<std::size_t>(index)].text;
}

void ListBox::SetList(int index, std::string text) {
    CheckIndex(index);
    items_[static_cast<std::size_t>(index)].text = std::move(text);
    Changed(Property::Items);
}

void ListBox::AddItem(std::string text, int index) {
    if (index < -1 || index > ListCount()) InvalidPropertyValue();
    const auto at = index == -1 ? items_.end() : items_.begin() + index;
    items_.insert(at, Item{std::move(text), false});
    if (index != -1 && listIndex_ >= index) ++listIndex_;
    Changed(Property::Items);
}

void ListBox::RemoveItem(int index) {
    CheckIndex(index);
    items_.erase(items_.begin() + index);
    if (listIndex_ == index)
        listIndex_ = -1;
    else if (listIndex_ > index)
        --listIndex_;
    Changed(Property::Items);
}

void ListBox::Clear() {
    items_.clear();
    listIndex_ = -1;
    Changed(Property::Items);
}

void ListBox::SetListIndex(int index) {
    if (index < -1 || index >= ListCount()) InvalidPropertyValue();
    listIndex_ = index;
    if (mode_ == Selection::Single) {
        for (std::size_t i = 0; i < items_.size(); ++i) items_[i].selected = static_cast<int>(i) == index;
    } else if (index >= 0) {
        // the focused item of an extended list is selected with it
        items_[static_cast<std::size_t>(index)].selected = true;
    }
    Changed(Property::ListIndex);
    Click.Raise();
}

bool ListBox::Selected(int index) const {
    CheckIndex(index);
    return items_[static_cast<std::size_t>(index)].selected;
}

void ListBox::SetSelected(int index, bool selected) {
    CheckIndex(index);
    if (mode_ == Selection::Single) {
        if (selected) SetListIndex(index);
        return;
    }
    items_[static_cast<std::size_t>(index)].selected = selected;
    Changed(Property::Selected);
}

int ListBox::SelCount() const {
    return static_cast<int>(std::count_if(items_.begin(), items_.end(), [](const Item& i) { return i.selected; }));
}

void ListBox::ClickItem(int index) {
    CheckIndex(index);
    if (mode_ == Selection::Extended) {
        for (auto& item : items_) item.selected = false;
        Changed(Property::Selected);
    }
    SetListIndex(index);
}

ScrollBar::ScrollBar(Form* owner, std::string name, Orientation orientation)
    : Control(owner, std::move(name)), orientation_(orientation) {}

void ScrollBar::SetRange(int min, int max) {
    min_ = min;
    max_ = max;
    const int lo = std::min(min, max);
    const int hi = std::max(min, max);
    value_ = std::clamp(value_, lo, hi);
    Changed(Property::Range);
}

void ScrollBar::SetValue(int value) {
    const int lo = std::min(min_, max_);
    const int hi = std::max(min_, max_);
    if (value < lo || value > hi) InvalidPropertyValue();
    if (value == value_) return;
    value_ = value;
    Changed(Property::Value);
    Change.Raise();
}

MenuItem::MenuItem(Form* owner, std::string name, std::string caption, std::string shortcut)
    : Control(owner, std::move(name)), caption_(std::move(caption)), shortcut_(std::move(shortcut)) {}

void MenuItem::SetCaption(std::string caption) {
    caption_ = std::move(caption);
    Changed(Property::Caption);
}

void MenuItem::SetChecked(bool checked) {
    checked_ = checked;
    Changed(Property::Checked);
}

Timer::Timer(Form* owner, std::string name, int intervalMs) : Control(owner, std::move(name)), interval_(intervalMs) {}

void Timer::SetInterval(int ms) {
    interval_ = ms;
    Changed(Property::Interval);
}

void Timer::SetTimerEnabled(bool enabled) {
    if (timerEnabled_ == enabled) return;
    timerEnabled_ = enabled;
    Changed(Property::TimerEnabled);
}

}  // namespace ostrivane::form
