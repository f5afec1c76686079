#pragma once

#include <analysis/compute/LyrAnalysisControl.h>

#include <QCoreApplication>
#include <QString>

/** What an analysis has to say, in the user's language.
 *  @param title  of the analysis; empty: the message stands alone
 *  @return empty if it was cancelled or succeeded */
inline QString lysAnalysisMessage(const LyrAnalysisOutcome& outcome, const QString& title) {
    if (outcome.cancelled || !outcome.text) {
        return {};
    }
    QString text = QCoreApplication::translate("LyrAnalysis", outcome.text);
    for (const std::string& argument : outcome.arguments) {
        text = text.arg(QString::fromStdString(argument));
    }
    return title.isEmpty() ? text : QString::fromUtf8("%1: %2").arg(title, text);
}
