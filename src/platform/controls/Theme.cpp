#include "platform/controls/Theme.h"

#include "platform/controls/ImageList.h"

#include <QApplication>
#include <QPalette>

namespace controls {

namespace {

struct Colours
{
    QRgb window, base, alternate, button, text, dimmed, highlight, highlighted, link;
};

constexpr Colours light{0xf3f4f6, 0xffffff, 0xf6f8fb, 0xf0f1f4, 0x1c2024,
                        0x8b929b, 0x2f6fb5, 0xffffff, 0x0b57a4};
constexpr Colours dark{0x2b2d30, 0x1f2123, 0x26292c, 0x3a3d41, 0xe3e5e8,
                       0x868c93, 0x2f6fb5, 0xffffff, 0x79b8ff};

QPalette paletteOf(const Colours& colours)
{
    QPalette palette{QColor(colours.button), QColor(colours.window)};
    palette.setColor(QPalette::Base, colours.base);
    palette.setColor(QPalette::AlternateBase, colours.alternate);
    palette.setColor(QPalette::Highlight, colours.highlight);
    palette.setColor(QPalette::HighlightedText, colours.highlighted);
    palette.setColor(QPalette::Link, colours.link);
    palette.setColor(QPalette::ToolTipBase, colours.base);
    palette.setColor(QPalette::PlaceholderText, colours.dimmed);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, colours.text);
        palette.setColor(QPalette::Disabled, role, colours.dimmed);
    }
    return palette;
}

} // namespace

void applyTheme(const QString& wanted)
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setWindowIcon(ImageList::applicationIcon());
    if (wanted == QLatin1String("light"))
        QApplication::setPalette(paletteOf(light));
    else if (wanted == QLatin1String("dark"))
        QApplication::setPalette(paletteOf(dark));
}

} // namespace controls
