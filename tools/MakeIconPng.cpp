// Draws the program's icon as a PNG of the given size, for the icon theme of the package.
// Usage: tw_iconpng SIZE OUTPUT.png (run with QT_QPA_PLATFORM=offscreen where there is no display)
#include "widgets/Icons.h"

#include <QGuiApplication>
#include <QPixmap>

#include <cstdio>
#include <cstdlib>

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: tw_iconpng SIZE OUTPUT.png\n");
        return 2;
    }
    const int size = std::atoi(argv[1]);
    const QPixmap picture = AppIcon().pixmap(size, size);
    if (picture.isNull() || !picture.save(QString::fromLocal8Bit(argv[2]), "PNG"))
        return 1;
    return 0;
}
