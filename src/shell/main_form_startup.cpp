#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireStartupEvents() {}

}  // namespace ostrivane
