#pragma once

#include <workbench/Options.h>

#include <QObject>

class LyqAnalysisRun;

namespace workbench {

class MainWindow;

/** Does in a window what a command line asks for: analyses the volume that was opened, writes report and picture. */
class BatchRun : public QObject {
    Q_OBJECT

public:
    static constexpr int FAILED = 1;
    static constexpr int UNUSABLE = 2;

    /** @param window  has not begun to open the volume yet */
    BatchRun(MainWindow& window, const Options& options);

    /** False where users go on in the window afterwards. */
    static bool endsByItself(const Options& options);

Q_SIGNALS:
    /** What went wrong, for people. */
    void failed(const QString& message);
    /** All is done that was asked for; the program's exit status. Not told where users go on. */
    void ended(int status);

private:
    void begin();
    /** Applies the preset that was asked for. */
    void applyPreset();
    void save(const LyqAnalysisRun& run);
    void analysed(bool done, const QString& message);
    void takePictureWhenDone();
    void stop(int status, const QString& message);

    MainWindow& mWindow;
    Options mOptions;
    bool mStopped = false;
};

}  // namespace workbench
