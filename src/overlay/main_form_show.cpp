#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireShowEvents() {}

}  // namespace ostrivane
