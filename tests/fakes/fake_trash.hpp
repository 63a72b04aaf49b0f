// The desktop's trash: takes a file or a directory away and notes its path,
// or refuses it.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/trash.hpp"

namespace ostrivane::fakes {

class FakeTrash final : public Trash {
public:
    bool refuse = false;
    std::vector<std::string> taken;
    bool MoveToTrash(const std::string& path) override {
        if (refuse) return false;
        taken.push_back(path);
        return std::filesystem::remove_all(path) > 0;
    }
};

}  // namespace ostrivane::fakes
