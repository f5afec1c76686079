#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QTimer>

#include <algorithm>
#include <ctime>
#include <vector>

/** Asks the event loop for a turn every 10 ms, and keeps what passed between the turns that it got.
 *
 *  A machine that is busy otherwise makes every window wait. What the window does itself is told apart by two more
 *  clocks, both of Linux: the processor time of this thread, and the time that it was ready to run while other threads
 *  had the processors. */
class Heartbeat : public QObject {
public:
    static constexpr int PERIOD = 10;

    /** What passed between two turns, ms. */
    struct Gap {
        double clock = 0.0;    ///< all of it
        double working = 0.0;  ///< in which this thread was running
        double blocked = 0.0;  ///< in which it was running, or waited for anything but a processor
    };

    Heartbeat() {
        mTimer.setTimerType(Qt::PreciseTimer);
        connect(&mTimer, &QTimer::timeout, this, &Heartbeat::beat);
        mClock.start();
        mLast = now();
        mTimer.start(PERIOD);
    }

    const std::vector<Gap>& gaps() const { return mGaps; }
    /** The longest of each, not of one gap. */
    Gap longest() const {
        Gap all;
        for (const Gap& gap : mGaps) {
            all.clock = std::max(all.clock, gap.clock);
            all.working = std::max(all.working, gap.working);
            all.blocked = std::max(all.blocked, gap.blocked);
        }
        return all;
    }

private:
    struct Time {
        double clock;
        double working;
        double waiting;
    };

    Time now() const {
        QFile file("/proc/thread-self/schedstat");
        const QList<QByteArray> numbers =
            file.open(QIODevice::ReadOnly) ? file.readAll().simplified().split(' ') : QList<QByteArray>();
        const double waiting = numbers.size() > 1 ? numbers[1].toDouble() / 1e6 : 0.0;
        timespec working{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &working);
        return {static_cast<double>(mClock.nsecsElapsed()) / 1e6,
                static_cast<double>(working.tv_sec) * 1e3 + static_cast<double>(working.tv_nsec) / 1e6, waiting};
    }
    void beat() {
        const Time time = now();
        const double clock = time.clock - mLast.clock;
        mGaps.push_back({clock, time.working - mLast.working, std::max(clock - (time.waiting - mLast.waiting), 0.0)});
        mLast = time;
    }

    QTimer mTimer;
    QElapsedTimer mClock;
    Time mLast{};
    std::vector<Gap> mGaps;
};

/** The longest gaps of a run that kept within `working` and `blocked` ms, of the last of three where none did. `run`
 *  fills in its Heartbeat::Gap. A machine that stops for a moment, which counts as work of whoever was running, does so
 *  once; a stretch of work that keeps the window waiting is there in each run. */
template <class Run>
Heartbeat::Gap calmestOf3(double working, double blocked, const Run& run) {
    Heartbeat::Gap longest;
    for (int attempt = 0; attempt == 0 || (attempt < 3 && (longest.working >= working || longest.blocked >= blocked));
         ++attempt) {
        longest = {};
        run(longest);
    }
    return longest;
}
