#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::LayOutControls() {}

}  // namespace ostrivane
