#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireStateEvents() {}

}  // namespace ostrivane
