// Writes the program's icon as PNG files for the icon theme:
//   ostrivane-icon-png THEME_DIR NAME SIZE...
// gives THEME_DIR/<SIZE>x<SIZE>/apps/NAME.png for each size, drawn by the
// program's own code from the SVG it carries.
#include <QDir>
#include <QImage>
#include <QString>

#include <cstdio>
#include <string>

#include "desktop/program_icon.hpp"

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s THEME_DIR NAME SIZE...\n", argv[0]);
        return 2;
    }
    const QString theme = QString::fromLocal8Bit(argv[1]);
    const QString name = QString::fromLocal8Bit(argv[2]);
    for (int i = 3; i < argc; ++i) {
        const std::string text = argv[i];
        const int size = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos && text.size() <= 4 ? std::stoi(text) : 0;
        if (size <= 0) {
            std::fprintf(stderr, "%s: not a size: %s\n", argv[0], argv[i]);
            return 2;
        }
        const QString dir = QStringLiteral("%1/%2x%2/apps").arg(theme).arg(size);
        const QString file = dir + QLatin1Char('/') + name + QStringLiteral(".png");
        const QImage image = ostrivane::desktop::RenderProgramIcon(QSize(size, size));
        if (image.isNull() || !QDir().mkpath(dir) || !image.save(file, "PNG")) {
            std::fprintf(stderr, "%s: cannot write %s\n", argv[0], file.toLocal8Bit().constData());
            return 1;
        }
    }
    return 0;
}
