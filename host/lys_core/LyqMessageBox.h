#pragma once

#include <lys_core/LysCoreExport.h>

#include <QMessageBox>

/** Message boxes of the application: one button, plain text, drawn by the toolkit on every desktop. */
class LYS_CORE_EXPORT LyqMessageBox : public QMessageBox {
    Q_OBJECT

public:
    LyqMessageBox(Icon icon, const QString& caption, const QString& text, QWidget* parent = nullptr);

    /** Shows a warning and waits until it is closed. */
    static void warning(QWidget* parent, const QString& caption, const QString& text);
};
