// The program names its data file and its message box after its own file;
// the tests run as another program, so they give it the program's name.
#include "store/data_file.hpp"

namespace {
const bool kNamed = (ostrivane::SetExecutableBaseName(ostrivane::kDefaultExecutableBaseName), true);
}  // namespace
