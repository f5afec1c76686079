#pragma once

#include <lys_core/LysCoreExport.h>

#include <QSettings>
#include <QVariant>

/** The user's preferences, kept between runs. Made on first use. */
class LYS_CORE_EXPORT LyqPreferenceManager {
public:
    static LyqPreferenceManager& instance();

    QVariant value(const QString& key, const QVariant& fallback = QVariant()) const {
        return mSettings.value(key, fallback);
    }
    void setValue(const QString& key, const QVariant& value) { mSettings.setValue(key, value); }

private:
    LyqPreferenceManager();
    QSettings mSettings;
};
