// The input box's window: keys typed into its controls are not previewed
// by the form's key handler, and a key the handler types anew reaches the
// control with the focus once it has returned.
#pragma once

namespace ostrivane {
class InputBoxForm;
}

namespace ostrivane::desktop {

class QtFormBinding;

void AttachInputBox(QtFormBinding& binding, InputBoxForm& box);
void DetachInputBox(QtFormBinding& binding, InputBoxForm& box);

}  // namespace ostrivane::desktop
