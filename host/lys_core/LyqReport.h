#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

/** The result of an analysis as a table: for a list in the window, and for a file. */
struct LyqReport {
    /** A column: `id` in files ("volume_mm3"), `title` for people, translated. */
    struct Column {
        QString id;
        QString title;
    };
    /** A total over all rows. */
    struct Total {
        QString id;
        QString title;
        QVariant value;
    };

    QString id;     ///< of the analysis
    QString title;  ///< translated
    QVector<Column> columns;
    QVector<QVector<QVariant>> rows;  ///< a value for each column, lengths in mm
    /** Rows that are not listed here because there are too many of them; totals and files count them. */
    qint64 rowsLeftOut = 0;
    QVector<Total> totals;
};
