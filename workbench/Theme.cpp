#include <workbench/Theme.h>

#include <QApplication>
#include <QPalette>
#include <QStyle>

namespace workbench {

void applyTheme(bool dark) {
    QApplication::setStyle("Fusion");
    QPalette palette = QApplication::style()->standardPalette();
    if (dark) {
        const QColor window(45, 47, 51), base(30, 31, 34), text(222, 224, 228), accent(64, 128, 196);
        palette.setColor(QPalette::Window, window);
        palette.setColor(QPalette::WindowText, text);
        palette.setColor(QPalette::Base, base);
        palette.setColor(QPalette::AlternateBase, QColor(38, 40, 44));
        palette.setColor(QPalette::Text, text);
        palette.setColor(QPalette::Button, QColor(56, 59, 64));
        palette.setColor(QPalette::ButtonText, text);
        palette.setColor(QPalette::BrightText, Qt::white);
        palette.setColor(QPalette::ToolTipBase, QColor(64, 67, 72));
        palette.setColor(QPalette::ToolTipText, text);
        palette.setColor(QPalette::PlaceholderText, QColor(140, 143, 148));
        palette.setColor(QPalette::Highlight, accent);
        palette.setColor(QPalette::HighlightedText, Qt::white);
        palette.setColor(QPalette::Link, QColor(110, 170, 230));
        palette.setColor(QPalette::Light, QColor(78, 82, 88));
        palette.setColor(QPalette::Midlight, QColor(66, 69, 75));
        palette.setColor(QPalette::Mid, QColor(78, 81, 86));
        palette.setColor(QPalette::Dark, QColor(26, 27, 29));
        palette.setColor(QPalette::Shadow, QColor(14, 15, 16));
        for (const auto role :
             {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
            palette.setColor(QPalette::Disabled, role, QColor(120, 123, 128));
        }
        palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(70, 74, 80));
    }
    QApplication::setPalette(palette);
}

}  // namespace workbench
