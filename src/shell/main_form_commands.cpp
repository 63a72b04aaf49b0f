#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireCommandEvents() {}

}  // namespace ostrivane
