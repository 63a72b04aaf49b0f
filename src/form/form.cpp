#include "form/form.hpp"

namespace ostrivane::form {

Form::Form(std::string name) : name_(std::move(name)) {}

void Form::SetCaption(std::string caption) {
    caption_ = std::move(caption);
    FormChanged.Raise(*this);
}

void Form::SetVisible(bool visible) {
    if (visible_ == visible) return;
    visible_ = visible;
    FormChanged.Raise(*this);
}

void Form::SetWindowState(WindowState state) {
    if (windowState_ == state) return;
    windowState_ = state;
    FormChanged.Raise(*this);
}

void Form::Register(Control& control) { controls_[control.Name()] = &control; }

Control* Form::Find(const std::string& name) const {
    const auto it = controls_.find(name);
    return it == controls_.end() ? nullptr : it->second;
}

bool Form::ValidateActiveControl() {
    if (!active_) return true;
    bool cancel = false;
    active_->Validate.Raise(cancel);
    return !cancel;
}

bool Form::SetFocusTo(Control& target) {
    if (active_ == &target) return true;
    if (active_ && target.CausesValidation && !ValidateActiveControl()) return false;
    Control* left = active_;
    active_ = &target;
    if (left) left->LostFocus.Raise();
    target.GotFocus.Raise();
    return true;
}

}  // namespace ostrivane::form
