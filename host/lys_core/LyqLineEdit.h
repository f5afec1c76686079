#pragma once

#include <lys_core/LysCoreExport.h>

#include <QLineEdit>

/** A line of text that follows a model while it is being typed in. */
class LYS_CORE_EXPORT LyqLineEdit : public QLineEdit {
    Q_OBJECT

public:
    explicit LyqLineEdit(QWidget* parent = nullptr, const char* name = nullptr);

    /** Shows a text, silently. The same text stays alone; with another one the cursor stays where it is, as far as the
     * text reaches. */
    void showText(const QString& shown);
};
