#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireMarkerEvents() {}

}  // namespace ostrivane
