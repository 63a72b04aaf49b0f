#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireTrayEvents() {}

}  // namespace ostrivane
