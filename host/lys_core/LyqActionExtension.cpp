#include <lys_core/LyqActionExtension.h>

LyqActionExtension::~LyqActionExtension() = default;

LyqActionExtension::Menu LyqActionExtension::menu() const {
    return Menu::Tools;
}

QKeySequence LyqActionExtension::shortcut() const {
    return {};
}

QIcon LyqActionExtension::icon() const {
    return {};
}

bool LyqActionExtension::isInToolBar() const {
    return false;
}

bool LyqActionExtension::isEnabled() const {
    return true;
}

bool LyqActionExtension::isCheckable() const {
    return false;
}

bool LyqActionExtension::isChecked() const {
    return false;
}
