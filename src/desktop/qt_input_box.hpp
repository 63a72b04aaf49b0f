// The input box's window: its key handler sees each key going down in the
// form, and the key it types anew reaches the control with the focus once
// the handler has returned.
#pragma once

namespace ostrivane {
class InputBoxForm;
}

namespace ostrivane::desktop {

class QtFormBinding;

void AttachInputBox(QtFormBinding& binding, InputBoxForm& box);
void DetachInputBox(QtFormBinding& binding, InputBoxForm& box);

}  // namespace ostrivane::desktop
