#pragma once

#include <QCoreApplication>
#include <QString>

#include <string>

/** Why a report was not saved, in the user's language.
 *  @param error  what LyrAnalysisReport said */
inline QString lysReportMessage(const QString& file, const std::string& error) {
    if (!file.endsWith(QLatin1String(".csv")) && !file.endsWith(QLatin1String(".json"))) {
        return QCoreApplication::translate("Report",
                                           "The kind of a report follows from its name: let \"%1\" end in "
                                           ".csv or .json.")
            .arg(file);
    }
    return QCoreApplication::translate("Report",
                                       "The report cannot be written. Choose another folder or name, or make "
                                       "room. %1")
        .arg(QString::fromStdString(error));
}
