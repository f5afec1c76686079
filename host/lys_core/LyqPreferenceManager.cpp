#include <lys_core/LyqPreferenceManager.h>

LyqPreferenceManager::LyqPreferenceManager()
    : mSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("lys"), QStringLiteral("lys")) {}

LyqPreferenceManager& LyqPreferenceManager::instance() {
    static LyqPreferenceManager manager;
    return manager;
}
