// A form: its caption, place and state, its controls by name, and the focus.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "form/controls.hpp"

namespace ostrivane::form {

enum class WindowState { Normal = 0, Minimized = 1, Maximized = 2 };

class Form {
public:
    explicit Form(std::string name);
    virtual ~Form() = default;
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    const std::string& Name() const { return name_; }
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);
    bool Visible() const { return visible_; }
    void SetVisible(bool visible);
    WindowState GetWindowState() const { return windowState_; }
    void SetWindowState(WindowState state);
    // Place and size in twips.
    int Left = 0;
    int Top = 0;
    int Width = 0;
    int Height = 0;
    // The picture of the window's icon, by name as a PictureBox names it;
    // empty: the desktop's default.
    std::string Icon;
    // A dialog shown over this form is centred on it and stays in front of
    // it; none: a form without a place of its own is centred on the screen.
    const Form* CentreOwner = nullptr;

    Control* ActiveControl() const { return active_; }
    // Moves the focus: the control left runs its Validate first (when the
    // target causes validation); a Cancel keeps the focus and gives false.
    bool SetFocusTo(Control& target);
    // Validates the active control without moving the focus.
    bool ValidateActiveControl();

    Control* Find(const std::string& name) const;
    const std::map<std::string, Control*>& Controls() const { return controls_; }
    void Register(Control& control);

    // Tells a binding that a form-level property changed (caption, visible, state).
    Event<Form&> FormChanged;

private:
    std::string name_;
    std::string caption_;
    bool visible_ = false;
    WindowState windowState_ = WindowState::Normal;
    Control* active_ = nullptr;
    std::map<std::string, Control*> controls_;
};

}  // namespace ostrivane::form
