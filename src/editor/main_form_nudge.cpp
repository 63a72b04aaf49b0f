#include "editor/main_form.hpp"

namespace ostrivane {

void MainForm::WireNudgeEvents() {}

}  // namespace ostrivane
