#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireGroupEvents() {}

}  // namespace ostrivane
