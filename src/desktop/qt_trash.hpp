// The freedesktop trash of the user, through Qt: a file on another volume
// goes to that volume's trash, and where there is none the move fails.
#pragma once

#include <QFile>
#include <QString>

#include "platform/trash.hpp"

namespace ostrivane::desktop {

class QtTrash final : public Trash {
public:
    bool MoveToTrash(const std::string& path) override {
        return QFile::moveToTrash(QString::fromLocal8Bit(path.c_str()));
    }
};

}  // namespace ostrivane::desktop
