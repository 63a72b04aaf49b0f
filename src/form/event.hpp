// One handler per event, as a form's code module has: the form wires its
// handler, the binding or a test raises the event.
#pragma once

#include <functional>
#include <utility>

namespace ostrivane::form {

template <class... Args>
class Event {
public:
    using Handler = std::function<void(Args...)>;

    void Connect(Handler handler) { handler_ = std::move(handler); }
    bool Connected() const { return static_cast<bool>(handler_); }

    template <class... CallArgs>
    void Raise(CallArgs&&... args) const {
        if (handler_) handler_(std::forward<CallArgs>(args)...);
    }

private:
    Handler handler_;
};

}  // namespace ostrivane::form
