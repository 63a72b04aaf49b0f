#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireFieldEvents() {}

}  // namespace ostrivane
