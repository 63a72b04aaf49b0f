// The desktop's trash, where a deleted file can be got back from.
#pragma once

#include <string>

namespace ostrivane {

class Trash {
public:
    virtual ~Trash() = default;
    // False when the file could not go there (no trash on its volume, say).
    virtual bool MoveToTrash(const std::string& path) = 0;
};

}  // namespace ostrivane
